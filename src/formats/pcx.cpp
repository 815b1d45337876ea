#include "formats/pcx.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <vector>

#include "core/bytes.h"
#include "core/error_codes.h"
#include "core/file_io.h"
#include "core/fixed_palette.h"
#include "core/names.h"
#include "core/palette_bytes.h"
#include "core/row_format.h"
#include "formats/info_start.h"
#include "formats/pcx_rle.h"

namespace pxm {
namespace {

// Offsets in the 128-byte header; every number is little-endian.
enum HeaderOffset : size_t {
  kManufacturer = 0,  // always 10
  kVersion = 1,       // 3 = no palette information, 5 = may carry the 256-colour trailer
  kEncoding = 2,
  kBitsPerPixel = 3,  // per plane
  kXMin = 4,          // signed, like the three below
  kYMin = 6,
  kXMax = 8,
  kYMax = 10,
  kHorizontalDpi = 12,
  kVerticalDpi = 14,
  kHeaderPalette = 16,  // 16 entries of red, green, blue
  kReserved = 64,
  kPlanes = 65,
  kBytesPerLine = 66,  // per plane, signed
  kPaletteInfo = 68,
};

constexpr size_t kHeaderBytes = 128;
constexpr uint8_t kManufacturerMark = 10;
constexpr uint8_t kTrailerMark = 12;
constexpr size_t kTrailerBytes = 768;

struct Header {
  uint8_t version = 0;
  uint8_t bitsPerPixel = 0;
  uint8_t planes = 0;
  int32_t width = 0;
  int32_t depth = 0;
  int32_t bytesPerLine = 0;
  uint32_t bits = 0;  // the picture's depth by the rule below

  bool FourBitsOnePlane() const { return bitsPerPixel == 4 && planes == 1; }
};

int16_t Signed16(const uint8_t* p) {
  return static_cast<int16_t>(LoadLe16(p));
}

Header ParseHeader(const uint8_t* h) {
  Header out;
  out.version = h[kVersion];
  out.bitsPerPixel = h[kBitsPerPixel];
  out.planes = h[kPlanes];
  out.width = Signed16(h + kXMax) - Signed16(h + kXMin) + 1;
  out.depth = Signed16(h + kYMax) - Signed16(h + kYMin) + 1;
  out.bytesPerLine = Signed16(h + kBytesPerLine);
  if (out.bitsPerPixel == 8 && out.planes == 3)
    out.bits = 24;
  else
    out.bits = out.bitsPerPixel != 1 ? out.bitsPerPixel : out.planes;
  return out;
}

// Opens the file and reads the header: 1 when it cannot be opened, 2 when it is short or its
// first byte is not the PCX mark.
int OpenHeader(InputFile& in, const std::string& path, FileWindow window, uint8_t* h) {
  if (!in.Open(path, window)) return kOpenError;
  if (!in.ReadExact(h, kHeaderBytes) || h[kManufacturer] != kManufacturerMark)
    return kCorruptedFile;
  return kOk;
}

// An empty or inside-out rectangle, or planes that make no depth, cannot be a picture; refusing
// them here keeps absurd sizes away from the store.
bool Describable(const Header& h) {
  return h.width > 0 && h.depth > 0 && h.bits != 0;
}

void LoadHeaderPalette(const uint8_t* h, Palette& palette) {
  PaletteFromBytes({h + kHeaderPalette, 16 * 3}, kRgbEntries, palette);
}

int LoadPalette(InputFile& in, const uint8_t* h, const Header& header, Palette& palette) {
  if (header.bits == 1) {
    palette[0] = Rgb{0, 0, 0};
    palette[1] = Rgb{255, 255, 255};
  } else if (header.bits == 24) {
    palette = ThumbGetPalette(0);
  } else if (header.bits == 8 && header.version >= 5) {
    // The trailer is found from the end of the file: the coded rows have no length of their own.
    uint8_t mark = 0;
    bool found = in.Size() >= kTrailerBytes + 1 && in.Seek(in.Size() - kTrailerBytes - 1) &&
                 in.ReadExact(&mark, 1) && mark == kTrailerMark;
    if (!found) {
      LoadHeaderPalette(h, palette);
      return kOk;
    }
    uint8_t table[kTrailerBytes];
    if (!in.ReadExact(table, sizeof table)) return kReadError;
    PaletteFromBytes(table, kRgbEntries, palette);
  } else if (header.version == 3) {
    std::copy_n(PcxDefaultPalette().begin(), 16, palette.begin());
  } else {
    LoadHeaderPalette(h, palette);
  }
  return kOk;
}

// Bytes decoded for one row. A 2-bit single-plane file is taken as two planes of one bit
// (difference D8 of the differences table).
int64_t EncodedLineLength(const Header& h) {
  if (h.bits >= 2 && h.bits <= 4 && !h.FourBitsOnePlane()) return int64_t{h.bytesPerLine} * h.bits;
  if (h.bits == 24) return int64_t{h.bytesPerLine} * 3;
  return h.bytesPerLine;
}

// Planes of one bit, each `stride` bytes, into 4-bit packed pixels (plane 0 = lowest bit).
void PlanesToNibbles(const uint8_t* planes, size_t stride, uint32_t planeCount, uint32_t width,
                     uint8_t* out) {
  auto index = [&](uint32_t x) {
    uint32_t v = 0;
    const size_t byte = x >> 3;
    const uint32_t shift = 7 - (x & 7);
    for (uint32_t p = 0; p < planeCount; ++p) v |= ((planes[p * stride + byte] >> shift) & 1u) << p;
    return v;
  };
  for (uint32_t x = 0; x < width; x += 2) {
    uint32_t v = index(x) << 4;
    if (x + 1 < width) v |= index(x + 1);
    out[x >> 1] = static_cast<uint8_t>(v);
  }
}

int ReadRows(ImageInfo& info, InputFile& in, const Header& h) {
  const auto width = static_cast<uint32_t>(h.width);
  const int64_t lineLength = EncodedLineLength(h);
  const size_t stride = (width + 7) / 8;
  const bool planar = h.bits >= 2 && h.bits <= 4 && !h.FourBitsOnePlane();
  const bool rgb = h.bits == 24;

  // The working row, grown where a header's bytes per line asks for more than the picture's
  // width needs: the decoder stores one byte past the line, and planes are gathered at the
  // picture's own stride.
  uint64_t size = WorkingRowSize(width, h.bits);
  const uint64_t line = lineLength > 0 ? static_cast<uint64_t>(lineLength) : 0;
  size = std::max<uint64_t>(size, line + 2);
  if (planar) size = std::max<uint64_t>(size, stride * (h.bits - 1) + line + 2);
  if (size > SIZE_MAX / 2) throw std::bad_alloc();
  std::vector<uint8_t> decoded(static_cast<size_t>(size), 0);
  std::vector<uint8_t> work(static_cast<size_t>(size), 0);

  PcxRowDecoder decoder;
  const auto planeBytes = static_cast<size_t>(std::max(h.bytesPerLine, 0));
  for (int32_t r = 0; r < h.depth; ++r) {
    if (decoder.Decode(in, decoded.data(), lineLength, r) != kOk) return kReadError;
    std::span<uint8_t> row = decoded;
    if (planar) {
      std::fill(work.begin(), work.end(), 0);
      for (uint32_t p = 0; p < h.bits; ++p)
        std::memcpy(work.data() + p * stride, decoded.data() + p * planeBytes, planeBytes);
      std::fill(decoded.begin(), decoded.end(), 0);
      PlanesToNibbles(work.data(), stride, h.bits, width, decoded.data());
    } else if (rgb) {
      std::memcpy(work.data(), decoded.data(), 3 * planeBytes);
      const uint8_t* red = work.data();
      const uint8_t* green = red + planeBytes;
      const uint8_t* blue = green + planeBytes;
      uint8_t* out = decoded.data();
      for (size_t x = 0; x < planeBytes; ++x) {
        out[3 * x] = red[x];
        out[3 * x + 1] = green[x];
        out[3 * x + 2] = blue[x];
      }
    }
    if (info.putLine(row, r) != 0) return kCancelled;
  }
  return kOk;
}

// Header fields of a written file by picture depth.
struct Layout {
  uint8_t bitsPerPixel;
  uint8_t planes;
  uint32_t bytesPerLine;
  uint16_t paletteInfo;
};

Layout LayoutFor(uint32_t bits, uint32_t width) {
  // Bytes per line is not padded to an even count: the program's own reader only ever uses the
  // value stored, and earlier files of the program are laid out this way.
  if (bits == 1) return {1, 1, (width + 7) / 8, 1};
  if (bits >= 2 && bits <= 4) return {1, static_cast<uint8_t>(bits), (width + 7) / 8, 1};
  if (bits >= 5 && bits <= 8) return {8, 1, width, 1};
  return {8, 3, width, 0};
}

// One plane of a 4-bit packed row: bit p of every pixel, eight pixels a byte. The last byte's
// two pixels are both taken even for an odd width; the plane has room for them.
void NibblesToPlane(const uint8_t* row, uint32_t width, uint32_t p, uint8_t* plane) {
  for (uint32_t i = 0; 2 * i < width; ++i) {
    const uint32_t a = 2 * i;
    const uint32_t b = a + 1;
    plane[a >> 3] =
        static_cast<uint8_t>(plane[a >> 3] | (((row[i] >> (4 + p)) & 1u) << (7 - (a & 7))));
    plane[b >> 3] = static_cast<uint8_t>(plane[b >> 3] | (((row[i] >> p) & 1u) << (7 - (b & 7))));
  }
}

int WriteRows(ImageInfo& info, OutputFile& out, const Layout& layout, std::vector<uint8_t>& row,
              std::vector<uint8_t>& plane) {
  const uint32_t width = info.width;
  const uint32_t bits = info.bits;
  for (int32_t r = 0; r < info.depth; ++r) {
    if (info.getLine(row, r) != 0) return kCancelled;
    if (bits == 1 || (bits >= 5 && bits <= 8)) {
      if (PcxEncodeRow(row.data(), layout.bytesPerLine, out) != kOk) return kWriteError;
    } else if (bits >= 2 && bits <= 4) {
      for (uint32_t p = 0; p < bits; ++p) {
        std::fill(plane.begin(), plane.end(), 0);
        NibblesToPlane(row.data(), width, p, plane.data());
        if (PcxEncodeRow(plane.data(), layout.bytesPerLine, out) != kOk) return kWriteError;
      }
    } else {
      // Each plane is coded on its own: a run never joins two planes.
      for (size_t k = 0; k < 3; ++k) {
        const uint8_t* src = row.data() + k;
        for (uint32_t x = 0; x < width; ++x) plane[x] = src[3 * static_cast<size_t>(x)];
        if (PcxEncodeRow(plane.data(), width, out) != kOk) return kWriteError;
      }
    }
  }
  return kOk;
}

}  // namespace

const Palette& PcxDefaultPalette() {
  static const Palette palette = [] {
    Palette p{};
    const Rgb colours[16] = {{0, 0, 0},     {0, 0, 170},    {0, 170, 0},    {0, 170, 170},
                             {170, 0, 0},   {170, 0, 170},  {170, 170, 0},  {170, 170, 170},
                             {85, 85, 85},  {85, 85, 255},  {85, 255, 85},  {85, 255, 255},
                             {255, 85, 85}, {255, 85, 255}, {255, 255, 85}, {255, 255, 255}};
    std::copy(std::begin(colours), std::end(colours), p.begin());
    return p;
  }();
  return palette;
}

int PcxInfo(ImageInfo& info, const std::string& path, int /*purpose*/) {
  InputFile in;
  if (int code = OpenForInfo(info, path, in)) return code;
  uint8_t h[kHeaderBytes];
  if (!in.ReadExact(h, kHeaderBytes) || h[kManufacturer] != kManufacturerMark)
    return kCorruptedFile;
  const Header header = ParseHeader(h);
  if (!Describable(header)) return kCorruptedFile;
  // A run pair codes at most 63 bytes, and the coded lines hold at least the picture's pixels.
  if (!FileCouldHold(in.Size(), kHeaderBytes,
                     PackedPictureBytes(static_cast<uint32_t>(header.width),
                                        static_cast<uint64_t>(header.depth), header.bits),
                     32))
    return kCorruptedFile;
  info.width = static_cast<uint32_t>(header.width);
  info.depth = header.depth;
  info.bits = header.bits;
  // A four-plane picture reports one plane's worth, as it always has.
  uint32_t unpacked =
      static_cast<uint32_t>(header.bytesPerLine) * static_cast<uint32_t>(header.depth);
  if (header.bits == 24) unpacked *= header.planes;
  info.unpackedSize = unpacked;
  return LoadPalette(in, h, header, info.palette);
}

int PcxRead(ImageInfo& info, const std::string& path) {
  InputFile in;
  uint8_t h[kHeaderBytes];
  if (int code = OpenHeader(in, path, info.embedded, h)) return code;
  Header header = ParseHeader(h);
  if (!Describable(header)) return kCorruptedFile;
  // The record describes the picture the store was made for; a file changed since info was taken
  // must not write outside it.
  if (info.width < static_cast<uint32_t>(header.width))
    header.width = static_cast<int32_t>(info.width);
  header.depth = std::min(header.depth, info.depth);
  try {
    return ReadRows(info, in, header);
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
}

int PcxWrite(ImageInfo& info, const std::string& path) {
  const uint32_t width = info.width;
  const Layout layout = LayoutFor(info.bits, width);
  // The header holds signed 16-bit sizes: a larger picture cannot be described in it.
  if (width == 0 || width > 0x7FFF || info.depth <= 0 || info.depth > 0x8000)
    return kUnsuitableImage;

  OutputFile out;
  if (!out.Create(path)) return kCreateError;
  std::vector<uint8_t> row;
  std::vector<uint8_t> plane;
  try {
    // Two bytes of slack: the run test looks one byte past the end of what it codes.
    const auto size =
        static_cast<size_t>(std::max<uint64_t>(WorkingRowSize(width, info.bits), width + 2));
    row.assign(size, 0);
    plane.assign(size, 0);
  } catch (const std::bad_alloc&) {
    return kMemoryError;  // `out` deletes the file
  }

  uint8_t h[kHeaderBytes] = {};
  h[kManufacturer] = kManufacturerMark;
  h[kVersion] = 5;
  h[kEncoding] = 1;
  h[kBitsPerPixel] = layout.bitsPerPixel;
  StoreLe16(h + kXMax, width - 1);
  StoreLe16(h + kYMax, static_cast<uint32_t>(info.depth - 1));
  StoreLe16(h + kHorizontalDpi, 300);
  StoreLe16(h + kVerticalDpi, 300);
  PaletteToBytes(info.palette, kRgbEntries, {h + kHeaderPalette, 16 * 3});
  h[kPlanes] = layout.planes;
  StoreLe16(h + kBytesPerLine, layout.bytesPerLine);
  StoreLe16(h + kPaletteInfo, layout.paletteInfo);
  if (!out.Write(h, kHeaderBytes)) return kWriteError;

  if (int code = WriteRows(info, out, layout, row, plane)) return code;

  if (info.bits >= 5 && info.bits <= 8) {
    uint8_t trailer[1 + kTrailerBytes];
    trailer[0] = kTrailerMark;
    PaletteToBytes(info.palette, kRgbEntries, {trailer + 1, kTrailerBytes});
    if (!out.Write(trailer, sizeof trailer)) return kWriteError;
  }
  return out.Commit() ? kOk : kWriteError;
}

}  // namespace pxm
