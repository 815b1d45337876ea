#include "core/block_deflate.h"

#include <zlib.h>

#include <algorithm>
#include <system_error>
#include <thread>
#include <utility>

namespace pxm {

namespace {

// Deflate's window: a block primed with this much of what came before finds every match a
// single stream would have found across the seam.
constexpr size_t kWindowBytes = 32 * 1024;

// Runs `z` with `flush` until it has taken all its input and, for Z_FINISH, ended the stream,
// growing `out` as it needs room.
bool Drive(z_stream& z, std::vector<uint8_t>& out, int flush) {
  for (;;) {
    if (out.size() - z.total_out < 64) out.resize(out.size() + out.size() / 2 + 1024);
    z.next_out = out.data() + z.total_out;
    z.avail_out = static_cast<uInt>(out.size() - z.total_out);
    const int r = deflate(&z, flush);
    if (r == Z_STREAM_ERROR) return false;
    if (flush == Z_FINISH) {
      if (r == Z_STREAM_END) break;
    } else if (z.avail_in == 0 && z.avail_out > 0) {
      break;  // a sync flush is complete once it leaves room unused
    }
  }
  out.resize(z.total_out);
  return true;
}

struct Compressed {
  std::vector<uint8_t> bytes;
  bool ok = false;
};

// windowBits 15 makes a whole zlib stream, -15 a bare deflate part without header or check.
Compressed Compress(int level, int strategy, int windowBits, std::span<const uint8_t> dictionary,
                    std::span<const uint8_t> data, int flush) {
  Compressed c;
  z_stream z{};
  if (deflateInit2(&z, level, Z_DEFLATED, windowBits, 8, strategy) != Z_OK) return c;
  if (!dictionary.empty() &&
      deflateSetDictionary(&z, dictionary.data(), static_cast<uInt>(dictionary.size())) != Z_OK) {
    deflateEnd(&z);
    return c;
  }
  c.bytes.resize(deflateBound(&z, data.size()) + 16);
  z.next_in = const_cast<Bytef*>(data.data());
  z.avail_in = static_cast<uInt>(data.size());
  c.ok = Drive(z, c.bytes, flush);
  deflateEnd(&z);
  return c;
}

}  // namespace

BlockDeflate::BlockDeflate(int level, int strategy, Sink sink, size_t blockBytes,
                           unsigned threads)
    : level_(std::clamp(level, 1, 9)),
      strategy_(strategy),
      sink_(std::move(sink)),
      blockBytes_(std::max(blockBytes, kWindowBytes)) {
  if (threads == 0) threads = std::max(1u, std::thread::hardware_concurrency());
  inFlightLimit_ = threads;
  pending_.reserve(blockBytes_);
}

BlockDeflate::~BlockDeflate() {
  // Blocks still in flight after a failure finish before their buffers go.
  for (auto& f : inFlight_)
    if (f.valid()) f.wait();
}

bool BlockDeflate::Add(std::span<const uint8_t> data) {
  while (!data.empty() && !failed_) {
    // A full block waits for more data before it goes, so that the last block always has data
    // of its own and can end the stream.
    if (pending_.size() == blockBytes_ && !Dispatch(false)) return false;
    const size_t take = std::min(data.size(), blockBytes_ - pending_.size());
    pending_.insert(pending_.end(), data.begin(), data.begin() + static_cast<ptrdiff_t>(take));
    data = data.subspan(take);
  }
  return !failed_;
}

bool BlockDeflate::Dispatch(bool last) {
  if (!started_) {
    // The zlib header zlib itself would write for this level.
    const unsigned flevel = (strategy_ >= Z_HUFFMAN_ONLY || level_ < 2) ? 0
                            : level_ < 6                                 ? 1
                            : level_ == 6                                ? 2
                                                                         : 3;
    unsigned header = (0x78u << 8) | (flevel << 6);
    header += 31 - header % 31;
    const uint8_t bytes[2] = {static_cast<uint8_t>(header >> 8), static_cast<uint8_t>(header)};
    if (!sink_(bytes)) {
      failed_ = true;
      return false;
    }
    started_ = true;
  }

  std::vector<uint8_t> dictionary = dictionary_;
  std::vector<uint8_t> data = std::move(pending_);
  pending_ = {};
  pending_.reserve(blockBytes_);
  const size_t keep = std::min(data.size(), kWindowBytes);
  dictionary_.insert(dictionary_.end(), data.end() - static_cast<ptrdiff_t>(keep), data.end());
  if (dictionary_.size() > kWindowBytes)
    dictionary_.erase(dictionary_.begin(),
                      dictionary_.end() - static_cast<ptrdiff_t>(kWindowBytes));

  auto work = [level = level_, strategy = strategy_, last, dictionary = std::move(dictionary),
               data = std::move(data)]() {
    Block b;
    Compressed c = Compress(level, strategy, -15, dictionary, data, last ? Z_FINISH : Z_SYNC_FLUSH);
    b.ok = c.ok;
    b.compressed = std::move(c.bytes);
    b.adler = static_cast<uint32_t>(adler32(1, data.data(), static_cast<uInt>(data.size())));
    b.length = data.size();
    return b;
  };
  try {
    inFlight_.push_back(std::async(std::launch::async, std::move(work)));
  } catch (const std::system_error&) {
    // No thread to be had: the block is compressed here when its turn to be written comes.
    inFlight_.push_back(std::async(std::launch::deferred, std::move(work)));
  }
  while (inFlight_.size() > inFlightLimit_)
    if (!Collect()) return false;
  return true;
}

bool BlockDeflate::Collect() {
  Block b = inFlight_.front().get();
  inFlight_.pop_front();
  if (failed_) return false;
  if (!b.ok || !sink_(b.compressed)) {
    failed_ = true;
    return false;
  }
  adler_ = static_cast<uint32_t>(adler32_combine(adler_, b.adler, static_cast<z_off_t>(b.length)));
  return true;
}

bool BlockDeflate::FinishSingle() {
  Compressed c = Compress(level_, strategy_, 15, {}, pending_, Z_FINISH);
  if (!c.ok || !sink_(c.bytes)) failed_ = true;
  return !failed_;
}

bool BlockDeflate::Finish() {
  if (finished_ || failed_) return !failed_;
  finished_ = true;
  if (!started_) return FinishSingle();
  if (!Dispatch(true)) return false;
  while (!inFlight_.empty())
    if (!Collect()) return false;
  const uint8_t check[4] = {static_cast<uint8_t>(adler_ >> 24), static_cast<uint8_t>(adler_ >> 16),
                            static_cast<uint8_t>(adler_ >> 8), static_cast<uint8_t>(adler_)};
  if (!sink_(check)) failed_ = true;
  return !failed_;
}

}  // namespace pxm
