#include "formats/sun_raster.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <vector>

#include "core/bytes.h"
#include "core/error_codes.h"
#include "core/file_io.h"
#include "core/names.h"
#include "core/pixels.h"
#include "core/row_format.h"
#include "formats/info_start.h"

namespace pxm {
namespace {

// The 32-byte header: eight big-endian words.
enum HeaderOffset : size_t {
  kMagic = 0,
  kWidth = 4,
  kHeight = 8,
  kDepth = 12,      // bits per pixel
  kLength = 16,     // bytes of image data
  kType = 20,       // 0 old, 1 standard, 2 run-length, 3 RGB order
  kMapType = 24,    // 0 none, 1 equal red, green and blue planes
  kMapLength = 28,  // bytes of the colour map
};
constexpr size_t kHeaderBytes = 32;
constexpr uint32_t kSunMagic = 0x59A66A95;
constexpr uint32_t kTypeStandard = 1;
constexpr uint32_t kTypeRunLength = 2;
constexpr uint32_t kTypeRgb = 3;
constexpr uint32_t kMapEqualPlanes = 1;
constexpr int kEscape = 128;

struct Header {
  uint32_t width = 0;
  int32_t depth = 0;  // rows
  uint32_t fileDepth = 0;
  uint32_t type = 0;
  uint32_t mapType = 0;
  uint32_t mapLength = 0;
};

bool ParseHeader(const uint8_t* h, Header& out) {
  if (LoadBe32(h + kMagic) != kSunMagic) return false;
  out.width = LoadBe32(h + kWidth);
  out.depth = static_cast<int32_t>(LoadBe32(h + kHeight));
  out.fileDepth = LoadBe32(h + kDepth);
  out.type = LoadBe32(h + kType);
  out.mapType = LoadBe32(h + kMapType);
  out.mapLength = LoadBe32(h + kMapLength);
  return true;
}

// Depths whose rows have a layout: 1 to 8 bits (a byte a pixel from 2 up), 24 and 32.
bool KnownDepth(uint32_t d) {
  return (d >= 1 && d <= 8) || d == 24 || d == 32;
}

uint32_t RecordBits(uint32_t fileDepth) {
  return fileDepth < 24 ? fileDepth : 24;
}

// Bytes of one file row: rows are padded to an even length, except 32-bit rows, which are
// taken as they come.
uint64_t FileRowBytes(uint32_t width, uint32_t fileDepth) {
  uint64_t n;
  if (fileDepth == 1)
    n = (uint64_t{width} + 7) / 8;
  else if (fileDepth == 24)
    n = 3 * uint64_t{width};
  else if (fileDepth == 32)
    return 4 * uint64_t{width};
  else
    n = width;
  return n + (n & 1);
}

bool RunLength(uint32_t type) {
  return type == kTypeRunLength || type == kTypeRgb;
}

// Decodes one row of run-length data. A run that passes the end of the row is cut there and the
// rest of it dropped: the next row starts with a fresh code.
bool DecodeRow(InputFile& in, uint8_t* row, size_t rowBytes) {
  size_t n = 0;
  while (n < rowBytes) {
    int c = in.ReadByte();
    if (c < 0) return false;
    if (c != kEscape) {
      row[n++] = static_cast<uint8_t>(c);
      continue;
    }
    int count = in.ReadByte();
    if (count < 0) return false;
    if (count == 0) {
      row[n++] = kEscape;
      continue;
    }
    int value = in.ReadByte();
    if (value < 0) return false;
    size_t copies = std::min<size_t>(static_cast<size_t>(count) + 1, rowBytes - n);
    std::memset(row + n, value, copies);
    n += copies;
  }
  return true;
}

// 2 to 4 bits: a byte a pixel in the file, two pixels a byte in the store.
void PackNibbles(uint8_t* row, uint32_t width) {
  for (uint32_t x = 0; x < width; x += 2) {
    uint8_t right = x + 1 < width ? static_cast<uint8_t>(row[x + 1] & 0x0F) : 0;
    row[x / 2] = static_cast<uint8_t>((row[x] << 4) | right);
  }
}

// A 32-bit row is squeezed by copying the three bytes at 3i to 4i for i = 1, 2, ...: the
// direction is the opposite of what the layout asks for (difference D28 of the differences
// table).
void SpreadThirtyTwo(uint8_t* row, uint32_t width) {
  for (uint32_t i = 1; i < width; ++i) std::memmove(row + 4 * size_t{i}, row + 3 * size_t{i}, 3);
}

int ReadRows(ImageInfo& info, InputFile& in, const Header& h) {
  const uint64_t rowBytes = FileRowBytes(h.width, h.fileDepth);
  const uint64_t size =
      std::max({WorkingRowSize(h.width, info.bits), rowBytes, 4 * uint64_t{h.width}});
  std::vector<uint8_t> row(static_cast<size_t>(size), static_cast<uint8_t>(info.background));
  const bool runLength = RunLength(h.type);
  const bool invert = h.fileDepth == 1;
  const bool nibbles = h.fileDepth >= 2 && h.fileDepth <= 4;
  const bool thirtyTwo = h.fileDepth == 32;
  const bool swap = info.bits > 8 && h.type != kTypeRgb;

  for (int32_t y = 0; y < h.depth; ++y) {
    bool ok = runLength ? DecodeRow(in, row.data(), rowBytes) : in.ReadExact(row.data(), rowBytes);
    if (!ok) return kReadError;
    // In the file a set bit is black.
    if (invert)
      for (size_t i = 0; i < rowBytes; ++i) row[i] = static_cast<uint8_t>(~row[i]);
    if (nibbles) PackNibbles(row.data(), h.width);
    if (thirtyTwo) SpreadThirtyTwo(row.data(), h.width);
    if (swap) SwapRedBlue(row.data(), h.width);
    if (info.putLine(row, y) != 0) return kCancelled;
  }
  return kOk;
}

}  // namespace

int SunInfo(ImageInfo& info, const std::string& path, int /*purpose*/) {
  InputFile in;
  if (int code = OpenForInfo(info, path, in)) return code;
  uint8_t raw[kHeaderBytes];
  Header h;
  if (!in.ReadExact(raw, sizeof raw) || !ParseHeader(raw, h)) return kCorruptedFile;
  info.width = h.width;
  info.depth = h.depth;
  info.bits = RecordBits(h.fileDepth);
  info.unpackedSize = UnpackedSize(info.width, info.bits, info.depth);

  // A depth without a row layout, or rows the file cannot hold, mean a damaged header; refusing
  // here keeps an absurd size from ever reaching the image store. A run-length row is coded on
  // its own, so it takes at least a byte, and a three-byte run makes at most 256 bytes.
  if (!KnownDepth(h.fileDepth) || h.depth < 0) return kCorruptedFile;
  const uint64_t rowBytes = FileRowBytes(h.width, h.fileDepth);
  const auto rows = static_cast<uint64_t>(h.depth);
  const uint64_t dataStart = kHeaderBytes + (h.mapType == kMapEqualPlanes ? h.mapLength : 0);
  const uint64_t bytes = RowsBytes(rowBytes, rows);
  const bool fits = RunLength(h.type) ? FileCouldHold(in.Size(), dataStart, bytes, 86) &&
                                            FileCouldHold(in.Size(), dataStart, bytes ? rows : 0, 1)
                                      : FileCouldHold(in.Size(), dataStart, bytes, 1);
  if (!fits) return kCorruptedFile;

  if (info.bits == 1) {
    info.palette[0] = Rgb{0, 0, 0};
    info.palette[1] = Rgb{255, 255, 255};
  } else if (h.mapType == kMapEqualPlanes && h.mapLength == 0) {
    for (uint32_t i = 0; i < 256; ++i) {
      auto v = static_cast<uint8_t>(i);
      info.palette[i] = Rgb{v, v, v};
    }
  } else if (h.mapType == kMapEqualPlanes) {
    // Red, green and blue planes of a third of the map each; entries past what the map holds
    // stay black. The map is not checked further.
    const size_t n = std::min<size_t>(h.mapLength / 3, 256);
    uint8_t planes[3][256] = {};
    for (auto& plane : planes) in.Read(plane, n);
    for (size_t i = 0; i < 256; ++i)
      info.palette[i] = Rgb{planes[0][i], planes[1][i], planes[2][i]};
  }

  switch (h.type) {
    case 0:
    case kTypeStandard:
      info.description = "Uncompressed bitmap";
      break;
    case kTypeRunLength:
      info.description = "Run length compressed bitmap";
      break;
    case kTypeRgb:
      info.description = "RGB bitmap";
      break;
    default:
      info.description = "Unsupported compression type";
      break;
  }
  return kOk;
}

int SunRead(ImageInfo& info, const std::string& path) {
  InputFile in;
  if (!in.Open(path)) return kOpenError;
  uint8_t raw[kHeaderBytes];
  Header h;
  if (!in.ReadExact(raw, sizeof raw) || !ParseHeader(raw, h)) return kCorruptedFile;
  if (h.type > kTypeRgb) return kUnsupportedFormat;
  // The record describes the picture the store was made for; a file changed since info was
  // taken must not write outside it.
  if (!KnownDepth(h.fileDepth) || RecordBits(h.fileDepth) != info.bits) return kCorruptedFile;
  h.width = std::min(h.width, info.width);
  h.depth = std::min(h.depth, info.depth);
  if (h.mapType == kMapEqualPlanes && !in.Skip(h.mapLength)) return kReadError;
  try {
    return ReadRows(info, in, h);
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
}

int SunWrite(ImageInfo& info, const std::string& path) {
  const uint32_t width = info.width;
  const int32_t depth = info.depth;
  const uint32_t bits = info.bits;
  const bool mono = bits == 1;
  const bool mapped = bits >= 2 && bits <= 8;
  const uint32_t fileDepth = mono ? 1 : mapped ? 8 : 24;
  const uint64_t rowBytes = FileRowBytes(width, fileDepth);
  const uint64_t dataBytes = rowBytes * static_cast<uint64_t>(depth < 0 ? 0 : depth);
  // The length word holds 32 bits: a larger picture cannot be described.
  if (dataBytes > 0xFFFFFFFFu) return kUnsuitableImage;

  OutputFile out;
  if (!out.Create(path)) return kCreateError;
  std::vector<uint8_t> row, file;
  try {
    row.assign(static_cast<size_t>(WorkingRowSize(width, bits)), 0);
    file.assign(static_cast<size_t>(rowBytes), 0);
  } catch (const std::bad_alloc&) {
    return kMemoryError;  // `out` deletes the file
  }

  uint8_t h[kHeaderBytes] = {};
  StoreBe32(h + kMagic, kSunMagic);
  StoreBe32(h + kWidth, width);
  StoreBe32(h + kHeight, static_cast<uint32_t>(depth));
  StoreBe32(h + kDepth, fileDepth);
  StoreBe32(h + kLength, static_cast<uint32_t>(dataBytes));
  StoreBe32(h + kType, kTypeStandard);
  StoreBe32(h + kMapType, mapped ? kMapEqualPlanes : 0);
  StoreBe32(h + kMapLength, mapped ? 768 : 0);
  if (!out.Write(h, sizeof h)) return kWriteError;
  if (mapped) {
    uint8_t planes[3][256];
    for (size_t i = 0; i < 256; ++i) {
      planes[0][i] = info.palette[i].red;
      planes[1][i] = info.palette[i].green;
      planes[2][i] = info.palette[i].blue;
    }
    if (!out.Write(planes, sizeof planes)) return kWriteError;
  }

  const size_t packed = static_cast<size_t>(PackedRowBytes(width, fileDepth));
  for (int32_t y = 0; y < depth; ++y) {
    if (info.getLine(row, y) != 0) return kCancelled;
    if (mapped && bits <= 4) {
      for (uint32_t x = 0; x < width; ++x)
        file[x] = static_cast<uint8_t>(PixelAt(row.data(), x, 4));
    } else {
      std::memcpy(file.data(), row.data(), packed);
    }
    // In the file a set bit is black; the pad byte is inverted with the rest.
    if (mono)
      for (uint8_t& b : file) b = static_cast<uint8_t>(~b);
    if (fileDepth == 24) SwapRedBlue(file.data(), width);
    if (!out.Write(file.data(), file.size())) return kWriteError;
    if (mono) std::fill(file.begin(), file.end(), 0);
  }
  return out.Commit() ? kOk : kWriteError;
}

}  // namespace pxm
