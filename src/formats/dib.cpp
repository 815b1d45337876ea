#include "formats/dib.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <vector>

#include "core/bytes.h"
#include "core/error_codes.h"
#include "core/pixels.h"
#include "core/row_format.h"
#include "formats/bmp.h"
#include "formats/info_start.h"
#include "formats/rle_rows.h"

namespace pxm {
namespace {

// Offsets in the 40-byte information header; the 12-byte core header has 16-bit width, height,
// planes and bit count at 4, 6, 8 and 10.
enum HeaderOffset : size_t {
  kHeaderSize = 0,
  kWidth = 4,
  kHeight = 8,
  kBits = 14,
  kCompression = 16,
  kColoursUsed = 32,
};
constexpr uint32_t kCoreHeader = 12;
constexpr uint32_t kInfoHeader = 40;
// The largest header any writer uses is the 124-byte fifth version; anything beyond is damage.
constexpr uint32_t kLargestHeader = 1024;
constexpr uint32_t kRle8 = 1;
constexpr uint32_t kRle4 = 2;

bool KnownBits(uint32_t bits) {
  return bits == 1 || bits == 4 || bits == 8 || bits == 16 || bits == 24 || bits == 32;
}

// Whether rows of this layout could all be in a file of `fileSize` bytes.
bool RowsFit(const DibLayout& d, uint64_t fileSize) {
  if (d.compression != 0) {
    const uint64_t picture = PackedPictureBytes(d.width, d.height, d.fileBits);
    return FileCouldHold(fileSize, d.rows, picture, RleBestRatio(d.compression == kRle4));
  }
  // The last row need not carry its padding.
  const uint64_t rowBytes = BmpRowBytes(d.width, d.fileBits);
  const uint64_t lastRow = PackedPictureBytes(d.width, 1, d.fileBits);
  return FileCouldHold(fileSize, d.rows, rowBytes * (d.height - 1) + lastRow, 1);
}

// Five-bit channels widened to eight, so that 31 is 255.
uint8_t Widen5(uint32_t v) {
  return static_cast<uint8_t>((v << 3) | (v >> 2));
}

}  // namespace

int ParseDib(InputFile& in, uint64_t offset, DibKind kind, DibLayout& out) {
  out = DibLayout{};
  uint8_t h[kInfoHeader] = {};
  if (!in.Seek(offset) || !in.ReadExact(h, 4)) return kCorruptedFile;
  const uint32_t headerSize = LoadLe32(h + kHeaderSize);
  const bool core = headerSize == kCoreHeader;
  if (!core && (headerSize < kInfoHeader || headerSize > kLargestHeader)) return kCorruptedFile;
  if (!in.ReadExact(h + 4, (core ? kCoreHeader : kInfoHeader) - 4)) return kCorruptedFile;

  int64_t height;
  uint32_t coloursUsed = 0;
  if (core) {
    out.width = LoadLe16(h + 4);
    height = LoadLe16(h + 6);
    out.fileBits = LoadLe16(h + 10);
  } else {
    const auto width = static_cast<int32_t>(LoadLe32(h + kWidth));
    if (width <= 0) return kCorruptedFile;
    out.width = static_cast<uint32_t>(width);
    height = static_cast<int32_t>(LoadLe32(h + kHeight));
    out.fileBits = LoadLe16(h + kBits);
    out.compression = LoadLe32(h + kCompression);
    coloursUsed = LoadLe32(h + kColoursUsed);
  }
  if (height < 0) {
    // Rows stored top first; the layout leaves no room for that in run-length data or icons.
    if (kind == DibKind::kIcon || out.compression != 0) return kCorruptedFile;
    out.topDown = true;
    height = -height;
  }
  // An icon's header counts the rows of its mask as well.
  if (kind == DibKind::kIcon) height /= 2;
  out.height = static_cast<uint32_t>(height);
  if (out.width == 0 || out.height == 0 || out.fileBits == 0) return kCorruptedFile;
  if (!KnownBits(out.fileBits)) return kUnsupportedFormat;
  const bool runs = (out.compression == kRle8 && out.fileBits == 8) ||
                    (out.compression == kRle4 && out.fileBits == 4);
  if (out.compression != 0 && (!runs || kind == DibKind::kIcon)) return kUnsupportedFormat;

  // The colour table follows the header: as many entries as the header says are used (all of
  // them when it says 0); pictures deeper than 8 bits may carry a table that nothing indexes.
  const uint32_t entrySize = core ? 3 : 4;
  uint32_t entries = 0;
  if (out.fileBits <= 8) {
    const uint32_t full = 1u << out.fileBits;
    entries = coloursUsed > 0 && coloursUsed < full ? coloursUsed : full;
  } else if (coloursUsed <= 256) {
    entries = coloursUsed;
  }
  uint8_t table[256 * 4];
  if (!in.Seek(offset + headerSize) || !in.ReadExact(table, entries * entrySize))
    return kCorruptedFile;
  out.bits = out.fileBits <= 8 ? out.fileBits : 24;
  if (out.bits <= 8) {
    for (uint32_t i = 0; i < entries; ++i)
      out.palette[i] =
          Rgb{table[i * entrySize + 2], table[i * entrySize + 1], table[i * entrySize]};
  } else {
    for (uint32_t i = 0; i < 256; ++i) {
      const auto v = static_cast<uint8_t>(i);
      out.palette[i] = Rgb{v, v, v};
    }
  }
  out.rows = offset + headerSize + uint64_t{entries} * entrySize;
  return RowsFit(out, in.Size()) ? kOk : kCorruptedFile;
}

void DescribeDib(ImageInfo& info, const DibLayout& dib) {
  info.width = dib.width;
  info.depth = static_cast<int32_t>(dib.height);
  info.bits = dib.bits;
  info.palette = dib.palette;
  info.unpackedSize = UnpackedSize(info.width, info.bits, info.depth);
}

int ReadDibRows(ImageInfo& info, InputFile& in, const DibLayout& dib) {
  if (info.width != dib.width || info.depth != static_cast<int32_t>(dib.height) ||
      info.bits != dib.bits)
    return kCorruptedFile;
  const uint32_t width = dib.width;
  const uint64_t rowBytes = BmpRowBytes(width, dib.fileBits);
  std::vector<uint8_t> row;
  std::vector<uint8_t> raw;
  try {
    const uint64_t size =
        std::max({WorkingRowSize(width, dib.bits), rowBytes, 3 * uint64_t{width}});
    if (size > SIZE_MAX / 2) return kMemoryError;
    row.assign(static_cast<size_t>(size), static_cast<uint8_t>(info.background));
    raw.assign(static_cast<size_t>(rowBytes), 0);
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
  if (!in.Seek(dib.rows)) return kReadError;

  const bool runs = dib.compression != 0;
  RleRowUnpacker unpacker(dib.compression == kRle8 ? RleRowUnpacker::Mode::kRle8
                                                   : RleRowUnpacker::Mode::kRle4);
  unpacker.Reset();
  const int32_t depth = static_cast<int32_t>(dib.height);
  for (int32_t i = 0; i < depth; ++i) {
    if (runs) {
      const int64_t n = unpacker.UnpackRow(in, row, width);
      if (n == -1) break;  // the end mark: the rows above stay as the store was made
      if (static_cast<uint64_t>(n) < unpacker.RowBytes(width)) return kReadError;
    } else if (dib.fileBits <= 8) {
      if (!in.ReadExact(row.data(), rowBytes)) return kReadError;
    } else {
      if (!in.ReadExact(raw.data(), rowBytes)) return kReadError;
      const uint8_t* s = raw.data();
      uint8_t* d = row.data();
      for (uint32_t x = 0; x < width; ++x, d += 3) {
        if (dib.fileBits == 16) {
          const uint32_t v = LoadLe16(s + 2 * size_t{x});
          d[0] = Widen5((v >> 10) & 31);
          d[1] = Widen5((v >> 5) & 31);
          d[2] = Widen5(v & 31);
        } else {
          // Blue, green, red; a fourth byte (alpha or nothing) in 32-bit pixels is dropped.
          const uint8_t* p = s + (dib.fileBits == 24 ? 3 : 4) * size_t{x};
          d[0] = p[2];
          d[1] = p[1];
          d[2] = p[0];
        }
      }
    }
    if (info.putLine(row, dib.topDown ? i : depth - 1 - i) != 0) return kCancelled;
  }
  return kOk;
}

}  // namespace pxm
