#include <algorithm>
#include <cstring>
#include <new>
#include <vector>

#include "core/bytes.h"
#include "core/error_codes.h"
#include "core/file_io.h"
#include "core/pixels.h"
#include "core/row_format.h"
#include "formats/pictor.h"
#include "formats/pictor_blocks.h"
#include "formats/pictor_layout.h"

namespace pxm {
namespace {

using namespace pictor;

// What a picture of each depth is written as: one plane of one bit (black and white, no
// palette), four EGA planes with a 16-entry VGA palette, or one plane of eight bits with a
// 256-entry VGA palette. The mode letters are the ones the program's own files of those kinds
// carry.
struct Written {
  uint32_t bitsPerPlane;
  uint32_t planes;
  uint16_t paletteType;
  uint32_t paletteEntries;
  char mode;
};

Written WrittenAs(uint32_t bits) {
  if (bits == 1) return {1, 1, kNoPalette, 0, 'E'};
  if (bits <= 4) return {1, 4, kVga16Palette, 16, 'M'};
  return {8, 1, kVgaPalette, 256, 'L'};
}

// Gathers the stream and writes it out a block at a time. Rows go in as bits: the stream has
// no padding between rows or planes, only at its end.
class BlockSink {
 public:
  BlockSink(OutputFile& out, uint32_t blockBytes) : out_(out), blockBytes_(blockBytes) {
    pending_.reserve(blockBytes);
  }
  // The first `bits` bits of `row`.
  bool PutBits(const uint8_t* row, uint64_t bits) {
    const size_t whole = static_cast<size_t>(bits / 8);
    const uint32_t rest = static_cast<uint32_t>(bits % 8);
    if (used_ == 0) {
      if (!Put(row, whole)) return false;
    } else {
      for (size_t i = 0; i < whole; ++i)
        if (!PutPartial(row[i], 8)) return false;
    }
    return rest == 0 || PutPartial(row[whole], rest);
  }
  bool Finish() {
    if (used_ > 0) {
      const auto last = static_cast<uint8_t>(partial_ << (8 - used_));
      used_ = 0;
      if (!Put(&last, 1)) return false;
    }
    return Flush();
  }

 private:
  // The high `n` bits of `byte`.
  bool PutPartial(uint8_t byte, uint32_t n) {
    partial_ = (partial_ << n) | (uint32_t{byte} >> (8 - n));
    used_ += n;
    if (used_ < 8) return true;
    used_ -= 8;
    const auto full = static_cast<uint8_t>(partial_ >> used_);
    partial_ &= (1u << used_) - 1;
    return Put(&full, 1);
  }
  bool Put(const uint8_t* data, size_t n) {
    while (n > 0) {
      const size_t k = std::min(n, blockBytes_ - pending_.size());
      pending_.insert(pending_.end(), data, data + k);
      data += k, n -= k;
      if (pending_.size() == blockBytes_ && !Flush()) return false;
    }
    return true;
  }
  bool Flush() {
    if (pending_.empty()) return true;
    packed_.clear();
    PackPicBlock(pending_.data(), pending_.size(), packed_);
    pending_.clear();
    return out_.Write(packed_.data(), packed_.size());
  }

  OutputFile& out_;
  size_t blockBytes_;
  std::vector<uint8_t> pending_;
  std::vector<uint8_t> packed_;
  uint32_t partial_ = 0;  // bits waiting for a whole byte
  uint32_t used_ = 0;
};

int WriteStream(ImageInfo& info, OutputFile& out, const Written& w) {
  const uint32_t width = info.width;
  const int32_t depth = info.depth;
  const size_t planeRow = static_cast<size_t>((uint64_t{width} * w.bitsPerPlane + 7) / 8);
  const uint64_t rowBits = uint64_t{width} * w.bitsPerPlane;
  const uint64_t stream = (rowBits * static_cast<uint64_t>(depth) * w.planes + 7) / 8;
  const uint32_t blockBytes = PicBlockBytes(stream);
  const uint64_t blocks = (stream + blockBytes - 1) / blockBytes;
  if (blocks > 0xFFFF) return kUnsuitableImage;
  uint8_t count[2];
  StoreLe16(count, static_cast<uint32_t>(blocks));
  if (!out.Write(count, 2)) return kWriteError;

  std::vector<uint8_t> row(static_cast<size_t>(WorkingRowSize(width, info.bits)), 0);
  std::vector<uint8_t> plane(planeRow);
  BlockSink sink(out, blockBytes);
  // Planes one after the other, each bottom row first; a planar picture asks for every row once
  // per plane.
  for (uint32_t p = 0; p < w.planes; ++p) {
    for (int32_t y = depth - 1; y >= 0; --y) {
      if (info.getLine(row, y) != 0) return kCancelled;
      if (w.planes == 1) {
        std::memcpy(plane.data(), row.data(), planeRow);
      } else {
        std::memset(plane.data(), 0, planeRow);
        for (uint32_t x = 0; x < width; ++x)
          if ((PixelAt(row.data(), x, 4) >> p) & 1)
            plane[x / 8] |= static_cast<uint8_t>(0x80 >> (x % 8));
      }
      if (!sink.PutBits(plane.data(), rowBits)) return kWriteError;
    }
  }
  return sink.Finish() ? kOk : kWriteError;
}

}  // namespace

int PicWrite(ImageInfo& info, const std::string& path) {
  // The format has no layout for true colour: such a picture must be reduced first.
  if (info.bits > 8) return kTooManyColours;
  if (info.width == 0 || info.depth <= 0 || info.width > 0xFFFF || info.depth > 0xFFFF)
    return kUnsuitableImage;
  const Written w = WrittenAs(info.bits);

  OutputFile out;
  if (!out.Create(path)) return kCreateError;
  uint8_t h[kHeaderBytes] = {};
  StoreLe16(h + kMagic, kPicMagic);
  StoreLe16(h + kWidth, info.width);
  StoreLe16(h + kHeight, static_cast<uint32_t>(info.depth));
  h[kPlaneInfo] = static_cast<uint8_t>(((w.planes - 1) << 4) | w.bitsPerPlane);
  h[kPaletteFlag] = 0xFF;
  h[kVideoMode] = static_cast<uint8_t>(w.mode);
  StoreLe16(h + kPaletteType, w.paletteType);
  StoreLe16(h + kPaletteSize, 3 * w.paletteEntries);
  if (!out.Write(h, sizeof h)) return kWriteError;
  // The VGA keeps six bits of each level.
  std::vector<uint8_t> palette;
  for (uint32_t i = 0; i < w.paletteEntries; ++i) {
    const Rgb& c = info.palette[i];
    palette.insert(palette.end(),
                   {static_cast<uint8_t>(c.red >> 2), static_cast<uint8_t>(c.green >> 2),
                    static_cast<uint8_t>(c.blue >> 2)});
  }
  if (!palette.empty() && !out.Write(palette.data(), palette.size())) return kWriteError;
  try {
    if (int code = WriteStream(info, out, w)) return code;
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
  return out.Commit() ? kOk : kWriteError;
}

}  // namespace pxm
