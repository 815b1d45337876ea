#include "formats/msp.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <vector>

#include "core/bytes.h"
#include "core/error_codes.h"
#include "core/file_io.h"
#include "core/row_format.h"
#include "formats/info_start.h"

namespace pxm {
namespace {

// The 32-byte header: sixteen little-endian words.
enum HeaderOffset : size_t {
  kKey1 = 0,  // "Da" in version 1, "Li" in version 2
  kKey2 = 2,  // "nM", "nS"
  kWidth = 4,
  kHeight = 6,
  kBitmapAspectX = 8,
  kBitmapAspectY = 10,
  kPrinterAspectX = 12,
  kPrinterAspectY = 14,
  kPrinterWidth = 16,
  kPrinterHeight = 18,
  kAspectCorrectionX = 20,
  kAspectCorrectionY = 22,
  kChecksum = 24,  // the XOR of the twelve words before it
  kPadding = 26,
};
constexpr size_t kHeaderBytes = 32;
constexpr uint16_t kVersion1Key1 = 0x6144, kVersion1Key2 = 0x4D6E;
constexpr uint16_t kVersion2Key1 = 0x694C, kVersion2Key2 = 0x536E;
constexpr uint8_t kWhite = 0xFF;  // in the file a set bit is white, as in the store
constexpr size_t kLongestRun = 255;

struct Header {
  int version = 0;
  uint32_t width = 0;
  uint32_t height = 0;
};

// A header with a known key and a checksum that agrees; anything else is not a picture.
bool ParseHeader(const uint8_t* h, Header& out) {
  const uint16_t key1 = LoadLe16(h + kKey1), key2 = LoadLe16(h + kKey2);
  if (key1 == kVersion1Key1 && key2 == kVersion1Key2)
    out.version = 1;
  else if (key1 == kVersion2Key1 && key2 == kVersion2Key2)
    out.version = 2;
  else
    return false;
  uint16_t sum = 0;
  for (size_t at = 0; at <= kChecksum; at += 2) sum = static_cast<uint16_t>(sum ^ LoadLe16(h + at));
  if (sum != 0) return false;
  out.width = LoadLe16(h + kWidth);
  out.height = LoadLe16(h + kHeight);
  return out.width > 0 && out.height > 0;
}

// Whether the file could hold the rows its header declares: raw rows in version 1; in version 2
// at least the row map (a row of no bytes is blank).
bool Fits(const Header& h, uint64_t fileSize) {
  if (h.version == 1)
    return FileCouldHold(fileSize, kHeaderBytes, PackedPictureBytes(h.width, h.height, 1), 1);
  return fileSize >= kHeaderBytes + 2 * uint64_t{h.height};
}

int ReadHeader(InputFile& in, Header& h) {
  uint8_t raw[kHeaderBytes];
  if (!in.ReadExact(raw, sizeof raw) || !ParseHeader(raw, h) || !Fits(h, in.Size()))
    return kCorruptedFile;
  return kOk;
}

// One coded row: a count byte n > 0 copies the next n bytes; 0, n, v repeats v n times. What the
// row's bytes do not reach stays white; what they make past the row is dropped.
void DecodeRow(std::span<const uint8_t> coded, uint8_t* row, size_t rowBytes) {
  std::memset(row, kWhite, rowBytes);
  ByteCursor c(coded);
  size_t x = 0;
  uint8_t type = 0;
  while (x < rowBytes && c.U8(type)) {
    if (type == 0) {
      uint8_t count = 0, value = 0;
      if (!c.U8(count) || !c.U8(value)) break;
      const size_t n = std::min<size_t>(count, rowBytes - x);
      std::memset(row + x, value, n);
      x += n;
    } else {
      const size_t n = std::min<size_t>({type, rowBytes - x, c.Remaining()});
      c.Read(row + x, n);
      x += n;
    }
  }
}

void EncodeRow(const uint8_t* row, size_t n, std::vector<uint8_t>& out) {
  size_t i = 0, literalStart = 0;
  auto flush = [&](size_t end) {
    while (literalStart < end) {
      const size_t k = std::min(end - literalStart, kLongestRun);
      out.push_back(static_cast<uint8_t>(k));
      out.insert(out.end(), row + literalStart, row + literalStart + k);
      literalStart += k;
    }
  };
  while (i < n) {
    size_t run = 1;
    while (i + run < n && run < kLongestRun && row[i + run] == row[i]) ++run;
    // A run costs three bytes: shorter ones go out as literals.
    if (run >= 3) {
      flush(i);
      out.insert(out.end(), {0, static_cast<uint8_t>(run), row[i]});
      i += run;
      literalStart = i;
    } else {
      i += run;
    }
  }
  flush(n);
}

}  // namespace

int MspInfo(ImageInfo& info, const std::string& path, int /*purpose*/) {
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
  info.description = h.version == 1 ? "Version 1 bitmap" : "Version 2 compressed bitmap";
  return kOk;
}

int MspRead(ImageInfo& info, const std::string& path) {
  InputFile in;
  if (!in.Open(path)) return kOpenError;
  Header h;
  if (int code = ReadHeader(in, h)) return code;
  // The record describes the store; a file changed since info must not write outside it.
  if (h.width != info.width || h.height != static_cast<uint32_t>(info.depth) || info.bits != 1)
    return kCorruptedFile;
  const size_t rowBytes = (h.width + 7) / 8;
  try {
    std::vector<uint8_t> row(static_cast<size_t>(WorkingRowSize(h.width, 1)));
    std::vector<uint8_t> map, coded;
    if (h.version == 2) {
      map.resize(2 * size_t{h.height});
      if (!in.ReadExact(map.data(), map.size())) return kReadError;
    }
    for (uint32_t y = 0; y < h.height; ++y) {
      if (h.version == 1) {
        if (!in.ReadExact(row.data(), rowBytes)) return kReadError;
      } else {
        coded.resize(LoadLe16(&map[2 * y]));
        if (!in.ReadExact(coded.data(), coded.size())) return kReadError;
        DecodeRow(coded, row.data(), rowBytes);
      }
      if (info.putLine(row, static_cast<int32_t>(y)) != 0) return kCancelled;
    }
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
  return kOk;
}

int MspWrite(ImageInfo& info, const std::string& path) {
  const uint32_t width = info.width;
  const int32_t depth = info.depth;
  if (info.bits != 1 || width == 0 || width > 0xFFFF || depth <= 0 || depth > 0xFFFF)
    return kUnsuitableImage;
  const size_t rowBytes = (width + 7) / 8;

  OutputFile out;
  if (!out.Create(path)) return kCreateError;
  std::vector<uint8_t> row, map, coded;
  try {
    row.assign(static_cast<size_t>(WorkingRowSize(width, 1)), 0);
    map.assign(2 * static_cast<size_t>(depth), 0);
    coded.reserve(rowBytes + rowBytes / kLongestRun + 2);
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
  uint8_t h[kHeaderBytes] = {};
  const auto w16 = static_cast<uint16_t>(width), d16 = static_cast<uint16_t>(depth);
  // Aspect ratios of one, the printer's size the picture's, no aspect correction.
  const uint16_t words[] = {kVersion2Key1, kVersion2Key2, w16, d16, 1, 1, 1, 1, w16, d16, 0, 0};
  uint16_t sum = 0;
  for (size_t i = 0; i < std::size(words); ++i) {
    StoreLe16(h + 2 * i, words[i]);
    sum = static_cast<uint16_t>(sum ^ words[i]);
  }
  StoreLe16(h + kChecksum, sum);
  // The row map goes out blank and is written again once every row's length is known.
  if (!out.Write(h, sizeof h) || !out.Write(map.data(), map.size())) return kWriteError;

  const uint8_t tail = static_cast<uint8_t>(0xFFu >> (width % 8 == 0 ? 8 : width % 8));
  for (int32_t y = 0; y < depth; ++y) {
    if (info.getLine(row, y) != 0) return kCancelled;
    // Bits past the picture are white, so that a white row ends in one run.
    row[rowBytes - 1] |= tail;
    coded.clear();
    EncodeRow(row.data(), rowBytes, coded);
    StoreLe16(&map[2 * static_cast<size_t>(y)], static_cast<uint32_t>(coded.size()));
    if (!out.Write(coded.data(), coded.size())) return kWriteError;
  }
  if (!out.Seek(kHeaderBytes) || !out.Write(map.data(), map.size())) return kWriteError;
  return out.Commit() ? kOk : kWriteError;
}

}  // namespace pxm
