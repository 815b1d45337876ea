#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <future>
#include <span>
#include <vector>

// A zlib stream compressed on every core. The data is cut into blocks; each block is deflated
// on a thread of its own, primed with the 32 KiB before it as its dictionary and ended on a byte
// boundary, so the blocks join into one valid stream (a few bytes larger than one zlib call
// makes, for the empty stored block that ends each). Data that never fills a first block is
// compressed by a single ordinary zlib stream, byte for byte what zlib alone would give.
namespace pxm {

class BlockDeflate {
 public:
  // Receives the compressed bytes in stream order, always on the thread that calls Add and
  // Finish. Answers false to stop.
  using Sink = std::function<bool(std::span<const uint8_t>)>;

  static constexpr size_t kDefaultBlockBytes = 1 << 20;

  // `level` 1 to 9 and `strategy` as deflateInit2 takes them; `threads` 0 means one per core.
  BlockDeflate(int level, int strategy, Sink sink, size_t blockBytes = kDefaultBlockBytes,
               unsigned threads = 0);
  ~BlockDeflate();
  BlockDeflate(const BlockDeflate&) = delete;
  BlockDeflate& operator=(const BlockDeflate&) = delete;

  bool Add(std::span<const uint8_t> data);
  // Ends the stream. False when compression or the sink failed at any point.
  bool Finish();

 private:
  struct Block {
    std::vector<uint8_t> compressed;
    uint32_t adler = 1;
    size_t length = 0;
    bool ok = false;
  };

  bool Dispatch(bool last);
  bool Collect();  // writes out the oldest block in flight
  bool FinishSingle();

  int level_;
  int strategy_;
  Sink sink_;
  size_t blockBytes_;
  size_t inFlightLimit_;
  std::vector<uint8_t> pending_;     // data of the block being filled
  std::vector<uint8_t> dictionary_;  // the last 32 KiB handed to a block
  std::deque<std::future<Block>> inFlight_;
  uint32_t adler_ = 1;
  bool started_ = false;  // the zlib header is out, blocks are in flight
  bool failed_ = false;
  bool finished_ = false;
};

}  // namespace pxm
