#include "formats/gem_img.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <vector>

#include "core/bytes.h"
#include "core/error_codes.h"
#include "core/file_io.h"
#include "core/pixels.h"
#include "core/row_format.h"
#include "formats/bit_planes.h"
#include "formats/gem_runs.h"
#include "formats/info_start.h"

namespace pxm {
namespace {

// The header: big-endian words, at least eight of them.
enum HeaderOffset : size_t {
  kVersion = 0,
  kHeaderWords = 2,  // the header's length in words: where the data starts
  kPlanes = 4,
  kPatternBytes = 6,  // the length of a pattern item's pattern
  kPixelWidth = 8,    // microns
  kPixelHeight = 10,
  kWidth = 12,
  kHeight = 14,
  kXimgMark = 16,     // "XIMG" in the extended header
  kColourModel = 20,  // 0: the palette is red, green, blue
  kXimgPalette = 22,  // three words a colour, 0 to 1000
};
constexpr size_t kBaseWords = 8;
constexpr size_t kXimgWords = 11;
constexpr uint32_t kTrueColourPlanes = 24;
constexpr uint32_t kLongestPattern = 8;
// Pixels of 85 microns: 300 dots an inch, what the header says of the files written here.
constexpr uint32_t kWrittenMicrons = 85;
constexpr uint32_t kLargestSize = 0x7FFF;  // the header's words are signed
constexpr uint32_t kMostCopies = 255;
// No byte of a file makes more than 255 × 255 bytes of picture: the best coding, a pattern item
// of eight bytes repeated 255 times on a scanline shown 255 times, makes about 37,000 a byte.
constexpr uint64_t kBestRatio = 255 * 255;

struct Header {
  uint32_t planes = 0;
  uint32_t patternBytes = 0;
  uint32_t width = 0;
  uint32_t height = 0;
  uint64_t dataStart = 0;
  bool ximg = false;
};

uint32_t BitsOf(uint32_t planes) {
  return planes == kTrueColourPlanes ? 24 : planes;
}

// Coded rows a scanline has, and the bytes of each.
size_t RowsOf(const Header& h) {
  return h.planes == kTrueColourPlanes ? 1 : h.planes;
}
uint64_t RowBytesOf(const Header& h) {
  return h.planes == kTrueColourPlanes ? 3 * uint64_t{h.width} : (uint64_t{h.width} + 7) / 8;
}

// Reads and checks the header (the file has no signature: the checks are what recognises it).
int ReadHeader(InputFile& in, Header& h, std::vector<uint8_t>& raw) {
  raw.resize(kBaseWords * 2);
  if (!in.ReadExact(raw.data(), raw.size())) return kCorruptedFile;
  const uint32_t version = LoadBe16(&raw[kVersion]);
  const uint32_t words = LoadBe16(&raw[kHeaderWords]);
  h.planes = LoadBe16(&raw[kPlanes]);
  h.patternBytes = LoadBe16(&raw[kPatternBytes]);
  h.width = LoadBe16(&raw[kWidth]);
  h.height = LoadBe16(&raw[kHeight]);
  h.dataStart = 2 * uint64_t{words};
  if (version == 0 || version > 3 || words < kBaseWords || h.dataStart > in.Size() ||
      h.patternBytes == 0 || h.patternBytes > kLongestPattern || h.width == 0 || h.height == 0)
    return kCorruptedFile;
  // Other true-colour layouts (15, 16 and 32 planes) exist but are not read.
  if (h.planes == 15 || h.planes == 16 || h.planes == 32) return kUnsupportedFormat;
  if (h.planes == 0 || (h.planes > 8 && h.planes != kTrueColourPlanes)) return kCorruptedFile;
  raw.resize(static_cast<size_t>(h.dataStart));
  if (!in.ReadExact(raw.data() + kBaseWords * 2, raw.size() - kBaseWords * 2))
    return kCorruptedFile;
  h.ximg = words >= kXimgWords && std::memcmp(&raw[kXimgMark], "XIMG", 4) == 0;
  const uint64_t picture =
      PackedPictureBytes(static_cast<uint32_t>(RowBytesOf(h) * RowsOf(h)), h.height, 8);
  return FileCouldHold(in.Size(), h.dataStart, picture, kBestRatio) ? kOk : kCorruptedFile;
}

uint8_t FromThousandths(uint32_t v) {
  return static_cast<uint8_t>((std::min<uint32_t>(v, 1000) * 255 + 500) / 1000);
}
uint16_t ToThousandths(uint8_t v) {
  return static_cast<uint16_t>((v * 1000 + 127) / 255);
}

// The palette: the XIMG one when the header holds it in red, green and blue; otherwise the
// standard colours for 2 to 4 planes and grey from white (0) to black (the highest value) for 5
// to 8, as one plane is white and black.
void LoadPalette(const Header& h, const std::vector<uint8_t>& raw, Palette& palette) {
  if (h.planes == kTrueColourPlanes) return;
  const size_t colours = size_t{1} << h.planes;
  if (h.planes == 1) {
    palette[0] = Rgb{0, 0, 0};
    palette[1] = Rgb{255, 255, 255};
    return;
  }
  if (h.ximg && LoadBe16(&raw[kColourModel]) == 0 && raw.size() >= kXimgPalette + 6 * colours) {
    for (size_t i = 0; i < colours; ++i) {
      const uint8_t* p = &raw[kXimgPalette + 6 * i];
      palette[i] = Rgb{FromThousandths(LoadBe16(p)), FromThousandths(LoadBe16(p + 2)),
                       FromThousandths(LoadBe16(p + 4))};
    }
    return;
  }
  if (h.planes <= 4) {
    std::copy_n(GemStandardPalette().begin(), colours, palette.begin());
    return;
  }
  for (size_t i = 0; i < colours; ++i) {
    const auto v = static_cast<uint8_t>(255 - i * 255 / (colours - 1));
    palette[i] = Rgb{v, v, v};
  }
}

// A scanline's coded rows to the store's packing.
void ToStoreRow(const Header& h, const uint8_t* line, size_t rowBytes, uint8_t* row) {
  if (h.planes == 1) {
    // A set bit is black in the file.
    for (size_t i = 0; i < rowBytes; ++i) row[i] = static_cast<uint8_t>(~line[i]);
  } else if (h.planes <= 4) {
    PlanesToNibbles(line, rowBytes, h.planes, h.width, row);
  } else if (h.planes <= 8) {
    PlanesToBytes(line, rowBytes, h.planes, h.width, row);
  } else {
    std::memcpy(row, line, rowBytes);
  }
}

int ReadRows(ImageInfo& info, InputFile& in, const Header& h) {
  const size_t rows = RowsOf(h);
  const auto rowBytes = static_cast<size_t>(RowBytesOf(h));
  std::vector<uint8_t> line(rows * rowBytes);
  // Planes unpack whole groups of eight pixels.
  const uint64_t unpacked = h.planes == kTrueColourPlanes ? rowBytes : 8 * uint64_t{rowBytes};
  std::vector<uint8_t> row(
      static_cast<size_t>(std::max<uint64_t>(WorkingRowSize(h.width, info.bits), unpacked)));
  GemLineDecoder decoder(in, h.patternBytes);
  for (uint32_t y = 0; y < h.height;) {
    const uint32_t copies = decoder.Next(line.data(), rows, rowBytes);
    if (copies == 0) return kReadError;
    ToStoreRow(h, line.data(), rowBytes, row.data());
    for (uint32_t k = 0; k < copies && y < h.height; ++k, ++y)
      if (info.putLine(row, static_cast<int32_t>(y)) != 0) return kCancelled;
  }
  return kOk;
}

// The picture's row as the file's scanline.
void ToFileLine(const ImageInfo& info, uint32_t planes, const uint8_t* row, size_t rowBytes,
                std::vector<uint8_t>& values, uint8_t* line) {
  const uint32_t width = info.width;
  if (planes == 1) {
    for (size_t i = 0; i < rowBytes; ++i) line[i] = static_cast<uint8_t>(~row[i]);
    if (width % 8) line[rowBytes - 1] &= static_cast<uint8_t>(0xFF00u >> (width % 8));
  } else if (planes == 4) {
    for (uint32_t x = 0; x < width; ++x) values[x] = static_cast<uint8_t>(PixelAt(row, x, 4));
    BytesToPlanes(values.data(), width, planes, rowBytes, line);
  } else if (planes == 8) {
    BytesToPlanes(row, width, planes, rowBytes, line);
  } else {
    std::memcpy(line, row, rowBytes);
  }
}

std::vector<uint8_t> BuildHeader(const ImageInfo& info, uint32_t planes) {
  const bool ximg = planes == 4 || planes == 8;
  const size_t colours = ximg ? size_t{1} << planes : 0;
  std::vector<uint8_t> h(ximg ? 2 * (kXimgWords + 3 * colours) : 2 * kBaseWords, 0);
  StoreBe16(&h[kVersion], 1);
  StoreBe16(&h[kHeaderWords], static_cast<uint32_t>(h.size() / 2));
  StoreBe16(&h[kPlanes], planes);
  // Patterns of one byte in plane files, of one pixel in true-colour files.
  StoreBe16(&h[kPatternBytes], planes == kTrueColourPlanes ? 3 : 1);
  StoreBe16(&h[kPixelWidth], kWrittenMicrons);
  StoreBe16(&h[kPixelHeight], kWrittenMicrons);
  StoreBe16(&h[kWidth], info.width);
  StoreBe16(&h[kHeight], static_cast<uint32_t>(info.depth));
  if (ximg) {
    std::memcpy(&h[kXimgMark], "XIMG", 4);
    for (size_t i = 0; i < colours; ++i) {
      uint8_t* p = &h[kXimgPalette + 6 * i];
      StoreBe16(p, ToThousandths(info.palette[i].red));
      StoreBe16(p + 2, ToThousandths(info.palette[i].green));
      StoreBe16(p + 4, ToThousandths(info.palette[i].blue));
    }
  }
  return h;
}

}  // namespace

const Palette& GemStandardPalette() {
  static const Palette palette = [] {
    Palette p{};
    const Rgb colours[16] = {{255, 255, 255}, {255, 0, 0},   {0, 255, 0},   {255, 255, 0},
                             {0, 0, 255},     {255, 0, 255}, {0, 255, 255}, {174, 174, 174},
                             {85, 85, 85},    {174, 0, 0},   {0, 174, 0},   {174, 174, 0},
                             {0, 0, 174},     {174, 0, 174}, {0, 174, 174}, {0, 0, 0}};
    std::copy(std::begin(colours), std::end(colours), p.begin());
    return p;
  }();
  return palette;
}

int GemInfo(ImageInfo& info, const std::string& path, int /*purpose*/) {
  InputFile in;
  if (int code = OpenForInfo(info, path, in)) return code;
  Header h;
  std::vector<uint8_t> raw;
  if (int code = ReadHeader(in, h, raw)) return code;
  info.width = h.width;
  info.depth = static_cast<int32_t>(h.height);
  info.bits = BitsOf(h.planes);
  info.unpackedSize = UnpackedSize(info.width, info.bits, info.depth);
  LoadPalette(h, raw, info.palette);
  info.description = h.planes == kTrueColourPlanes ? "True colour bit image"
                     : h.ximg                      ? "Extended bit image (XIMG)"
                                                   : "Bit image";
  return kOk;
}

int GemRead(ImageInfo& info, const std::string& path) {
  InputFile in;
  if (!in.Open(path)) return kOpenError;
  Header h;
  std::vector<uint8_t> raw;
  if (int code = ReadHeader(in, h, raw)) return code;
  // The record describes the store; a file changed since info must not write outside it.
  if (h.width != info.width || h.height != static_cast<uint32_t>(info.depth) ||
      BitsOf(h.planes) != info.bits)
    return kCorruptedFile;
  try {
    return ReadRows(info, in, h);
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
}

int GemWrite(ImageInfo& info, const std::string& path) {
  const uint32_t width = info.width;
  const int32_t depth = info.depth;
  if (width == 0 || width > kLargestSize || depth <= 0 ||
      depth > static_cast<int32_t>(kLargestSize))
    return kUnsuitableImage;
  const uint32_t planes = info.bits == 1   ? 1
                          : info.bits <= 4 ? 4
                          : info.bits <= 8 ? 8
                                           : kTrueColourPlanes;
  const size_t rows = planes == kTrueColourPlanes ? 1 : planes;
  const size_t rowBytes = planes == kTrueColourPlanes ? 3 * size_t{width} : (width + 7) / 8;
  const size_t patternBytes = planes == kTrueColourPlanes ? 3 : 1;

  OutputFile out;
  if (!out.Create(path)) return kCreateError;
  std::vector<uint8_t> row, values, line, next, coded;
  try {
    row.assign(static_cast<size_t>(WorkingRowSize(width, info.bits)), 0);
    values.assign(width, 0);
    line.assign(rows * rowBytes, 0);
    next.assign(rows * rowBytes, 0);
    coded.reserve(2 * line.size() + 16);
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
  const std::vector<uint8_t> header = BuildHeader(info, planes);
  if (!out.Write(header.data(), header.size())) return kWriteError;

  auto fetch = [&](int32_t y, std::vector<uint8_t>& into) {
    if (info.getLine(row, y) != 0) return false;
    ToFileLine(info, planes, row.data(), rowBytes, values, into.data());
    return true;
  };
  if (!fetch(0, line)) return kCancelled;
  for (int32_t y = 0; y < depth;) {
    // Equal scanlines that follow go out as one, shown as many times.
    uint32_t copies = 1;
    bool fetched = false;
    while (y + static_cast<int32_t>(copies) < depth && copies < kMostCopies) {
      if (!fetch(y + static_cast<int32_t>(copies), next)) return kCancelled;
      if (next != line) {
        fetched = true;
        break;
      }
      ++copies;
    }
    coded.clear();
    if (copies > 1) EncodeGemReplication(copies, coded);
    for (size_t r = 0; r < rows; ++r)
      EncodeGemRow(line.data() + r * rowBytes, rowBytes, patternBytes, coded);
    if (!out.Write(coded.data(), coded.size())) return kWriteError;
    y += static_cast<int32_t>(copies);
    if (fetched) {
      line.swap(next);
    } else if (y < depth) {
      if (!fetch(y, line)) return kCancelled;
    }
  }
  return out.Commit() ? kOk : kWriteError;
}

}  // namespace pxm
