#include "formats/pfs_art.h"

#include <algorithm>
#include <new>
#include <vector>

#include "core/bytes.h"
#include "core/error_codes.h"
#include "core/file_io.h"
#include "core/row_format.h"
#include "formats/info_start.h"
#include "formats/tiff_packbits.h"

namespace pxm {
namespace {

// The common kind: four little-endian words giving the picture's edges, then rows padded to an
// even length. In the file, as in the store, a set bit is white.
enum EdgeOffset : size_t { kLeft = 0, kRight = 2, kTop = 4, kBottom = 6 };
constexpr size_t kEdgeHeaderBytes = 8;
// The high-resolution kind: 0xFFFF where the left edge would be, two resolutions, the size and
// a word that has always been 1, then rows each packed on its own.
enum HighOffset : size_t { kMarker = 0, kDpiX = 2, kDpiY = 4, kWidth = 6, kHeight = 8 };
constexpr size_t kHighHeaderBytes = 12;
constexpr uint16_t kHighMarker = 0xFFFF;
// PackBits at best: two bytes give a run of 128.
constexpr uint64_t kBestRatio = 64;
// Unpacked high-resolution rows end in up to two bytes of padding, differently from file to
// file: the row length is found from the whole picture's.
constexpr uint64_t kMostPadding = 2;

struct Header {
  bool packed = false;
  uint32_t width = 0;
  uint32_t height = 0;
  uint64_t dataStart = 0;
};

uint64_t EvenRowBytes(uint32_t width) {
  const uint64_t n = (uint64_t{width} + 7) / 8;
  return n + (n & 1);
}

int ReadHeader(InputFile& in, Header& h) {
  uint8_t raw[kHighHeaderBytes] = {};
  if (!in.ReadExact(raw, kEdgeHeaderBytes)) return kCorruptedFile;
  if (LoadLe16(raw + kMarker) == kHighMarker) {
    if (!in.ReadExact(raw + kEdgeHeaderBytes, kHighHeaderBytes - kEdgeHeaderBytes))
      return kCorruptedFile;
    h.packed = true;
    h.width = LoadLe16(raw + kWidth);
    h.height = LoadLe16(raw + kHeight);
    h.dataStart = kHighHeaderBytes;
  } else {
    const int left = LoadLe16(raw + kLeft), right = LoadLe16(raw + kRight);
    const int top = LoadLe16(raw + kTop), bottom = LoadLe16(raw + kBottom);
    if (right <= left || bottom <= top) return kCorruptedFile;
    h.width = static_cast<uint32_t>(right - left);
    h.height = static_cast<uint32_t>(bottom - top);
    h.dataStart = kEdgeHeaderBytes;
  }
  if (h.width == 0 || h.height == 0) return kCorruptedFile;
  const bool fits =
      h.packed ? FileCouldHold(in.Size(), h.dataStart, PackedPictureBytes(h.width, h.height, 1),
                               kBestRatio)
               : FileCouldHold(in.Size(), h.dataStart, EvenRowBytes(h.width) * h.height, 1);
  return fits ? kOk : kCorruptedFile;
}

}  // namespace

int ArtInfo(ImageInfo& info, const std::string& path, int /*purpose*/) {
  InputFile in;
  if (int code = OpenForInfo(info, path, in)) return code;
  Header h;
  if (int code = ReadHeader(in, h)) return code;
  info.width = h.width;
  info.depth = static_cast<int32_t>(h.height);
  info.bits = 1;
  info.unpackedSize = UnpackedSize(info.width, info.bits, info.depth);
  info.palette[0] = Rgb{0, 0, 0};
  info.palette[1] = Rgb{255, 255, 255};
  info.description = h.packed ? "High resolution, packed rows" : "Uncompressed bitmap";
  return kOk;
}

int ArtRead(ImageInfo& info, const std::string& path) {
  InputFile in;
  if (!in.Open(path)) return kOpenError;
  Header h;
  if (int code = ReadHeader(in, h)) return code;
  // The record describes the store; a file changed since info must not write outside it.
  if (h.width != info.width || h.height != static_cast<uint32_t>(info.depth) || info.bits != 1)
    return kCorruptedFile;
  const uint64_t least = (uint64_t{h.width} + 7) / 8;
  uint64_t rowBytes = EvenRowBytes(h.width);
  const uint64_t dataBytes = in.Size() - h.dataStart;
  if (h.packed) {
    // Every row unpacks to the same length, padding included: the total tells it.
    const uint64_t total = CountPackBits(in, dataBytes, PackBits128::kNoOp);
    rowBytes = total / h.height;
    if (rowBytes < least || rowBytes > least + kMostPadding) return kCorruptedFile;
    if (!in.Seek(h.dataStart)) return kReadError;
  }
  try {
    std::vector<uint8_t> row(static_cast<size_t>(std::max(WorkingRowSize(h.width, 1), rowBytes)));
    PackBitsRows rows(in, dataBytes, PackBits128::kNoOp);
    for (uint32_t y = 0; y < h.height; ++y) {
      const bool ok =
          h.packed ? rows.Unpack(row.data(), rowBytes) : in.ReadExact(row.data(), rowBytes);
      if (!ok) return kReadError;
      if (info.putLine(row, static_cast<int32_t>(y)) != 0) return kCancelled;
    }
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
  return kOk;
}

int ArtWrite(ImageInfo& info, const std::string& path) {
  const uint32_t width = info.width;
  const int32_t depth = info.depth;
  // The right and bottom edges are 16-bit words.
  if (info.bits != 1 || width == 0 || width > 0xFFFF || depth <= 0 || depth > 0xFFFF)
    return kUnsuitableImage;
  const size_t rowBytes = static_cast<size_t>(EvenRowBytes(width));
  const size_t packed = (width + 7) / 8;

  OutputFile out;
  if (!out.Create(path)) return kCreateError;
  std::vector<uint8_t> row;
  try {
    row.assign(std::max(static_cast<size_t>(WorkingRowSize(width, 1)), rowBytes), 0);
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
  uint8_t h[kEdgeHeaderBytes] = {};
  StoreLe16(h + kRight, width);
  StoreLe16(h + kBottom, static_cast<uint32_t>(depth));
  if (!out.Write(h, sizeof h)) return kWriteError;
  const uint8_t lastMask = static_cast<uint8_t>(0xFF00u >> (width % 8 == 0 ? 8 : width % 8));
  for (int32_t y = 0; y < depth; ++y) {
    if (info.getLine(row, y) != 0) return kCancelled;
    // Bits past the picture and the padding byte are cleared, so files come out the same for
    // the same picture.
    row[packed - 1] &= lastMask;
    std::fill(row.begin() + static_cast<ptrdiff_t>(packed),
              row.begin() + static_cast<ptrdiff_t>(rowBytes), 0);
    if (!out.Write(row.data(), rowBytes)) return kWriteError;
  }
  return out.Commit() ? kOk : kWriteError;
}

}  // namespace pxm
