#include "formats/gif_codec.h"

#include <algorithm>
#include <memory>
#include <new>
#include <vector>

#include "core/error_codes.h"
#include "core/row_format.h"
#include "formats/gif_lzw.h"

namespace pxm {
namespace {

constexpr size_t kSubBlock = 255;

// The payload of consecutive data sub-blocks, gathered many at a time so that the decoder works
// on long runs of bytes. A zero length, the end of the file or a short sub-block ends the data.
class SubBlockReader {
 public:
  explicit SubBlockReader(InputFile& in) : in_(in), buffer_(256 * kSubBlock) {}
  // The next stretch of payload; empty when the data has ended.
  std::span<const uint8_t> Next() {
    size_t n = 0;
    while (!ended_ && n + kSubBlock <= buffer_.size()) {
      const int length = in_.ReadByte();
      if (length <= 0) {
        ended_ = true;
        break;
      }
      const size_t got = in_.Read(buffer_.data() + n, static_cast<size_t>(length));
      n += got;
      if (got < static_cast<size_t>(length)) ended_ = true;
    }
    return {buffer_.data(), n};
  }

 private:
  InputFile& in_;
  std::vector<uint8_t> buffer_;
  bool ended_ = false;
};

using PackRow = void (*)(const uint8_t* pixels, uint32_t width, uint8_t* out);

void PackOneBit(const uint8_t* pixels, uint32_t width, uint8_t* out) {
  uint32_t x = 0;
  for (; x + 8 <= width; x += 8) {
    const uint8_t* p = pixels + x;
    out[x >> 3] = static_cast<uint8_t>(((p[0] & 1) << 7) | ((p[1] & 1) << 6) | ((p[2] & 1) << 5) |
                                       ((p[3] & 1) << 4) | ((p[4] & 1) << 3) | ((p[5] & 1) << 2) |
                                       ((p[6] & 1) << 1) | (p[7] & 1));
  }
  if (x < width) {
    uint32_t v = 0;
    for (uint32_t i = 0; x + i < width; ++i) v |= (pixels[x + i] & 1u) << (7 - i);
    out[x >> 3] = static_cast<uint8_t>(v);
  }
}

void PackNibbles(const uint8_t* pixels, uint32_t width, uint8_t* out) {
  uint32_t x = 0;
  for (; x + 2 <= width; x += 2)
    out[x >> 1] = static_cast<uint8_t>(((pixels[x] & 15) << 4) | (pixels[x + 1] & 15));
  if (x < width) out[x >> 1] = static_cast<uint8_t>((pixels[x] & 15) << 4);
}

using UnpackRow = void (*)(const uint8_t* row, uint32_t width, uint8_t mask, uint8_t* pixels);

void UnpackOneBit(const uint8_t* row, uint32_t width, uint8_t /*mask*/, uint8_t* pixels) {
  for (uint32_t x = 0; x < width; ++x) pixels[x] = (row[x >> 3] >> (7 - (x & 7))) & 1;
}

void UnpackNibbles(const uint8_t* row, uint32_t width, uint8_t mask, uint8_t* pixels) {
  uint32_t x = 0;
  for (; x + 2 <= width; x += 2) {
    pixels[x] = static_cast<uint8_t>((row[x >> 1] >> 4) & mask);
    pixels[x + 1] = static_cast<uint8_t>(row[x >> 1] & mask);
  }
  if (x < width) pixels[x] = static_cast<uint8_t>((row[x >> 1] >> 4) & mask);
}

void UnpackBytes(const uint8_t* row, uint32_t width, uint8_t mask, uint8_t* pixels) {
  for (uint32_t x = 0; x < width; ++x) pixels[x] = row[x] & mask;
}

// Frames code bytes in sub-blocks of 255 and writes them; with `all` the last, shorter block
// too, otherwise it stays in `coded` for later.
bool WriteBlocks(OutputFile& out, std::vector<uint8_t>& coded, std::vector<uint8_t>& framed,
                 bool all) {
  const size_t whole = all ? coded.size() : coded.size() / kSubBlock * kSubBlock;
  framed.clear();
  for (size_t at = 0; at < whole; at += kSubBlock) {
    const size_t n = std::min(kSubBlock, whole - at);
    framed.push_back(static_cast<uint8_t>(n));
    framed.insert(framed.end(), coded.begin() + static_cast<std::ptrdiff_t>(at),
                  coded.begin() + static_cast<std::ptrdiff_t>(at + n));
  }
  coded.erase(coded.begin(), coded.begin() + static_cast<std::ptrdiff_t>(whole));
  return out.Write(framed.data(), framed.size());
}

}  // namespace

int32_t GifRowOrder::Next() {
  if (!interlaced_) return row_ < depth_ ? static_cast<int32_t>(row_++) : -1;
  static constexpr int32_t kStart[4] = {0, 4, 2, 1};
  static constexpr int32_t kStep[4] = {8, 8, 4, 2};
  while (pass_ < 4) {
    if (row_ < depth_) {
      const auto r = static_cast<int32_t>(row_);
      row_ += kStep[pass_];
      return r;
    }
    if (++pass_ < 4) row_ = kStart[pass_];
  }
  return -1;
}

int GifUnpackImage(InputFile& file, int codeSize, uint32_t width, int32_t depth, uint32_t bits,
                   uint32_t imageFlags, const LineSink& sink) {
  if (!GifLzwDecoder::IsValidCodeSize(codeSize)) return kReadError;
  if (width == 0 || depth <= 0) return kOk;
  try {
    const uint32_t storage = StorageBits(bits);
    // Eight-bit pictures are decoded straight into the row; the others are packed from bytes.
    const PackRow pack = storage == 1 ? PackOneBit : storage == 4 ? PackNibbles : nullptr;
    std::vector<uint8_t> row(
        static_cast<size_t>(std::max<uint64_t>(WorkingRowSize(width, bits), width)), 0);
    std::vector<uint8_t> unpacked(pack ? width : 0);
    uint8_t* pixels = pack ? unpacked.data() : row.data();

    auto decoder = std::make_unique<GifLzwDecoder>(codeSize);
    SubBlockReader blocks(file);
    GifRowOrder order((imageFlags & kGifInterlaced) != 0, depth);
    for (int32_t r = order.Next(); r >= 0; r = order.Next()) {
      size_t filled = 0;
      while (filled < width) {
        filled += decoder->Decode(pixels + filled, width - filled);
        if (filled == width || decoder->GetState() != GifLzwDecoder::State::kRunning) break;
        std::span<const uint8_t> more = blocks.Next();
        if (more.empty()) break;
        decoder->Feed(more.data(), more.size());
      }
      const bool whole = filled == width;
      if (!whole) std::fill(pixels + filled, pixels + width, uint8_t{0});
      if (pack) pack(pixels, width, row.data());
      if (sink(row, r) != 0) return kCancelled;
      if (!whole) return kReadError;
    }
    return kOk;
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
}

int GifCompressImage(OutputFile& file, uint32_t width, int32_t depth, uint32_t bits,
                     bool interlaced, const LineSource& source) {
  if (bits < 1 || bits > 8) return kWriteError;
  const int codeSize = static_cast<int>(std::max(bits, 2u));
  if (!file.WriteByte(static_cast<uint8_t>(codeSize))) return kWriteError;
  try {
    const uint32_t storage = StorageBits(bits);
    const UnpackRow unpack = storage == 1   ? UnpackOneBit
                             : storage == 4 ? UnpackNibbles
                                            : UnpackBytes;
    const auto mask = static_cast<uint8_t>((1u << bits) - 1);
    std::vector<uint8_t> row(
        static_cast<size_t>(std::max<uint64_t>(WorkingRowSize(width, bits), width)), 0);
    std::vector<uint8_t> pixels(width);
    constexpr size_t kFlushAt = 256 * kSubBlock;
    std::vector<uint8_t> coded;
    std::vector<uint8_t> framed;
    coded.reserve(kFlushAt + 64);
    framed.reserve(kFlushAt + kFlushAt / kSubBlock + 64);

    auto encoder = std::make_unique<GifLzwEncoder>(codeSize);
    GifRowOrder order(interlaced, depth);
    for (int32_t r = order.Next(); r >= 0; r = order.Next()) {
      if (source(row, r) != 0) return kCancelled;
      // Eight-bit rows need no unpacking or masking: every byte is a pixel already.
      const uint8_t* p = row.data();
      if (bits != 8) {
        unpack(row.data(), width, mask, pixels.data());
        p = pixels.data();
      }
      encoder->Add(p, width, coded);
      if (coded.size() >= kFlushAt && !WriteBlocks(file, coded, framed, false)) return kWriteError;
    }
    encoder->Finish(coded);
    if (!WriteBlocks(file, coded, framed, true) || !file.WriteByte(0)) return kWriteError;
    return kOk;
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
}

}  // namespace pxm
