#include "formats/targa.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <vector>

#include "config/settings.h"
#include "core/bytes.h"
#include "core/error_codes.h"
#include "core/file_io.h"
#include "core/names.h"
#include "core/palette_bytes.h"
#include "core/pixels.h"
#include "core/row_format.h"
#include "formats/info_start.h"

namespace pxm {
namespace {

// The 18-byte header; 16-bit fields are little-endian.
enum HeaderOffset : size_t {
  kIdLength = 0,      // bytes of the identification field after the header
  kMapType = 1,       // 0 none, 1 a colour map follows the identification field
  kImageType = 2,     // 1, 2, 3 uncompressed; 9, 10, 11 run-length packets
  kMapFirst = 3,      // index of the first colour map entry
  kMapLength = 5,     // number of colour map entries
  kMapEntrySize = 7,  // bits per colour map entry: 15, 16, 24 or 32
  kXOrigin = 8,
  kYOrigin = 10,
  kWidth = 12,
  kHeight = 14,
  kPixelDepth = 16,  // bits per pixel
  kDescriptor = 17,  // bit 5: top row first; bit 4: right to left
};
constexpr size_t kHeaderBytes = 18;
constexpr uint8_t kTopFirst = 0x20;
constexpr uint8_t kRightToLeft = 0x10;

struct Header {
  uint8_t idLength = 0;
  uint8_t mapType = 0;
  uint8_t type = 0;
  uint16_t mapFirst = 0;
  uint16_t mapLength = 0;
  uint8_t mapEntrySize = 0;
  uint32_t width = 0;
  int32_t depth = 0;
  uint8_t pixelDepth = 0;
  uint8_t descriptor = 0;
};

Header ParseHeader(const uint8_t* h) {
  Header out;
  out.idLength = h[kIdLength];
  out.mapType = h[kMapType];
  out.type = h[kImageType];
  out.mapFirst = LoadLe16(h + kMapFirst);
  out.mapLength = LoadLe16(h + kMapLength);
  out.mapEntrySize = h[kMapEntrySize];
  out.width = LoadLe16(h + kWidth);
  out.depth = LoadLe16(h + kHeight);
  out.pixelDepth = h[kPixelDepth];
  out.descriptor = h[kDescriptor];
  return out;
}

bool KnownType(uint8_t type) {
  return (type >= 1 && type <= 3) || (type >= 9 && type <= 11);
}
bool HasPackets(uint8_t type) {
  return type >= 9;
}

// Bytes one stored pixel value takes. Depths past 32 bits have no layout to read: 0.
size_t PixelBytes(uint8_t pixelDepth) {
  if (pixelDepth == 0 || pixelDepth > 32) return 0;
  return (pixelDepth + 7u) / 8u;
}

// A 1-bit file's values are the bytes of its packed rows; every other depth has one value per
// pixel.
size_t ValuesPerRow(uint32_t width, uint8_t pixelDepth) {
  return pixelDepth == 1 ? (width + 7u) / 8u : width;
}

size_t MapEntryBytes(uint8_t entrySize) {
  return (entrySize + 7u) / 8u;
}

// Entries the reader skips: the map's length less its first index. Real files store `length`
// entries, so one with a first index above 0 is read from the wrong offset (difference D35 of
// the differences table).
size_t SkippedMapBytes(const Header& h) {
  if (h.mapType == 0 || h.mapLength <= h.mapFirst) return 0;
  return static_cast<size_t>(h.mapLength - h.mapFirst) * MapEntryBytes(h.mapEntrySize);
}

// Five-bit components widened so that 31 becomes 255: (i × 255) div 31.
constexpr std::array<uint8_t, 32> kFiveBit = [] {
  std::array<uint8_t, 32> t{};
  for (uint32_t i = 0; i < 32; ++i) t[i] = static_cast<uint8_t>(i * 255 / 31);
  return t;
}();

// A 15- or 16-bit value takes its first byte as the high byte. The public layout is the other
// way round (and this program's own writer stores the low byte first): difference D22 of the
// differences table.
Rgb FromFifteen(const uint8_t* p) {
  uint32_t v = (static_cast<uint32_t>(p[0]) << 8) | p[1];
  return Rgb{kFiveBit[(v >> 10) & 31], kFiveBit[(v >> 5) & 31], kFiveBit[v & 31]};
}

Rgb MapEntry(const uint8_t* p, uint8_t entrySize) {
  if (entrySize == 15 || entrySize == 16) return FromFifteen(p);
  return Rgb{p[2], p[1], p[0]};  // B, G, R, and a dropped fourth byte for 32-bit entries
}

void SetGrey(Palette& palette) {
  for (uint32_t i = 0; i < 256; ++i) {
    auto v = static_cast<uint8_t>(i);
    palette[i] = Rgb{v, v, v};
  }
}

// The least number of bytes the picture's data can take: every value when it is stored
// uncompressed, one packet of 128 values (its header and one value) per 128 values otherwise.
uint64_t LeastDataBytes(const Header& h) {
  const uint64_t values = ValuesPerRow(h.width, h.pixelDepth) * static_cast<uint64_t>(h.depth);
  const uint64_t bytes = PixelBytes(h.pixelDepth);
  if (!HasPackets(h.type)) return values * bytes;
  return (values + 127) / 128 * (1 + bytes);
}

// Reads the values of one row, raw or through run-length packets. A packet may run on into the
// next row: writers that pack the whole picture as one stream do that, and the reader carries
// what is left of a packet over.
class ValueReader {
 public:
  ValueReader(InputFile& in, size_t valueBytes, bool packets)
      : in_(in), valueBytes_(valueBytes), packets_(packets) {}

  bool Fill(uint8_t* out, size_t values) {
    if (!packets_) return in_.ReadExact(out, values * valueBytes_);
    while (values > 0) {
      if (left_ == 0) {
        int header = in_.ReadByte();
        if (header < 0) return false;
        repeat_ = (header & 0x80) != 0;
        left_ = (static_cast<size_t>(header) & 0x7F) + 1;
        if (repeat_ && !in_.ReadExact(value_, valueBytes_)) return false;
      }
      size_t n = std::min(left_, values);
      if (!repeat_) {
        if (!in_.ReadExact(out, n * valueBytes_)) return false;
      } else if (valueBytes_ == 1) {
        std::memset(out, value_[0], n);
      } else {
        for (size_t k = 0; k < n; ++k) std::memcpy(out + k * valueBytes_, value_, valueBytes_);
      }
      out += n * valueBytes_;
      values -= n;
      left_ -= n;
    }
    return true;
  }

 private:
  InputFile& in_;
  size_t valueBytes_;
  bool packets_;
  size_t left_ = 0;
  bool repeat_ = false;
  uint8_t value_[4] = {};
};

// Turns one row of file values into the store's packing.
using RowUnpacker = void (*)(const uint8_t* values, uint8_t* row, uint32_t width);

void UnpackAsRead(const uint8_t*, uint8_t*, uint32_t) {}

// 2 to 4 bits: one value a byte in the file, two pixels a byte in the store.
void UnpackNibbles(const uint8_t* values, uint8_t* row, uint32_t width) {
  for (uint32_t x = 0; x < width; x += 2) {
    uint8_t right = x + 1 < width ? static_cast<uint8_t>(values[x + 1] & 0x0F) : 0;
    row[x / 2] = static_cast<uint8_t>((values[x] << 4) | right);
  }
}

void UnpackFifteen(const uint8_t* values, uint8_t* row, uint32_t width) {
  for (uint32_t x = 0; x < width; ++x) {
    Rgb c = FromFifteen(values + 2 * static_cast<size_t>(x));
    row[3 * x] = c.red;
    row[3 * x + 1] = c.green;
    row[3 * x + 2] = c.blue;
  }
}

void UnpackBgr(const uint8_t*, uint8_t* row, uint32_t width) {
  SwapRedBlue(row, width);
}

void UnpackBgra(const uint8_t* values, uint8_t* row, uint32_t width) {
  for (uint32_t x = 0; x < width; ++x) {
    const uint8_t* p = values + 4 * static_cast<size_t>(x);
    row[3 * x] = p[2];
    row[3 * x + 1] = p[1];
    row[3 * x + 2] = p[0];
  }
}

// Values that already are the store's bytes are read straight into the row.
bool ReadsIntoRow(uint8_t pixelDepth) {
  return pixelDepth == 1 || (pixelDepth >= 5 && pixelDepth <= 8) ||
         (pixelDepth >= 17 && pixelDepth <= 24);
}

RowUnpacker UnpackerFor(uint8_t pixelDepth) {
  if (pixelDepth == 1 || (pixelDepth >= 5 && pixelDepth <= 8)) return UnpackAsRead;
  if (pixelDepth <= 4) return UnpackNibbles;
  if (pixelDepth <= 16) return UnpackFifteen;
  if (pixelDepth <= 24) return UnpackBgr;
  return UnpackBgra;
}

int ReadRows(ImageInfo& info, InputFile& in, const Header& h) {
  const size_t valueBytes = PixelBytes(h.pixelDepth);
  const size_t values = ValuesPerRow(h.width, h.pixelDepth);
  // The row is at least as long as its width: right-to-left rows reverse that many bytes.
  const uint64_t rowSize =
      std::max<uint64_t>({WorkingRowSize(h.width, info.bits), h.width, values * valueBytes});
  std::vector<uint8_t> row(static_cast<size_t>(rowSize), static_cast<uint8_t>(info.background));
  std::vector<uint8_t> raw;
  const bool direct = ReadsIntoRow(h.pixelDepth);
  if (!direct) raw.assign(values * valueBytes, 0);
  const RowUnpacker unpack = UnpackerFor(h.pixelDepth);
  const bool topFirst = (h.descriptor & kTopFirst) != 0;
  const bool rightToLeft = (h.descriptor & kRightToLeft) != 0;

  ValueReader reader(in, valueBytes, HasPackets(h.type));
  for (int32_t i = 0; i < h.depth; ++i) {
    uint8_t* into = direct ? row.data() : raw.data();
    if (!reader.Fill(into, values)) return kReadError;
    unpack(raw.data(), row.data(), h.width);
    // Bytes, not pixels, are reversed: a deeper row comes out scrambled (difference D23).
    if (rightToLeft) std::reverse(row.begin(), row.begin() + h.width);
    if (info.putLine(row, topFirst ? i : h.depth - 1 - i) != 0) return kCancelled;
  }
  return kOk;
}

}  // namespace

int TargaInfo(ImageInfo& info, const std::string& path, int /*purpose*/) {
  InputFile in;
  if (int code = OpenForInfo(info, path, in)) return code;
  uint8_t raw[kHeaderBytes];
  if (!in.ReadExact(raw, sizeof raw)) return kCorruptedFile;
  info.palette[0] = Rgb{0, 0, 0};
  info.palette[1] = Rgb{255, 255, 255};

  const Header h = ParseHeader(raw);
  if (!KnownType(h.type)) return kCorruptedFile;
  info.description = HasPackets(h.type) ? "Run length compressed file" : "Uncompressed file";
  info.width = h.width;
  info.depth = h.depth;
  info.bits = h.pixelDepth <= 8 ? h.pixelDepth : 24;
  info.unpackedSize = UnpackedSize(info.width, info.bits, info.depth);

  // A depth without a layout, or data the file cannot hold, means a damaged header; refusing
  // here keeps an absurd size from ever reaching the image store.
  if (PixelBytes(h.pixelDepth) == 0) return kCorruptedFile;
  const uint64_t dataStart = kHeaderBytes + uint64_t{h.idLength} + SkippedMapBytes(h);
  if (!FileCouldHold(in.Size(), dataStart, LeastDataBytes(h), 1)) return kCorruptedFile;

  if (!in.Skip(h.idLength)) return kCorruptedFile;
  if (h.mapType == 0) {
    if (info.bits == 8) SetGrey(info.palette);
  } else if (h.mapEntrySize == 15 || h.mapEntrySize == 16 || h.mapEntrySize == 24 ||
             h.mapEntrySize == 32) {
    // Entries first..length-1 land in the palette slots of the same numbers.
    const size_t entryBytes = MapEntryBytes(h.mapEntrySize);
    uint8_t entry[4];
    for (uint32_t i = h.mapFirst; i < h.mapLength && i < 256; ++i) {
      if (!in.ReadExact(entry, entryBytes)) break;
      info.palette[i] = MapEntry(entry, h.mapEntrySize);
    }
  }
  if (info.bits == 1) {
    info.palette[0] = Rgb{0, 0, 0};
    info.palette[1] = Rgb{255, 255, 255};
  }
  return kOk;
}

int TargaRead(ImageInfo& info, const std::string& path) {
  InputFile in;
  if (!in.Open(path)) return kOpenError;
  uint8_t raw[kHeaderBytes];
  if (!in.ReadExact(raw, sizeof raw)) return kCorruptedFile;
  Header h = ParseHeader(raw);
  if (!KnownType(h.type) || PixelBytes(h.pixelDepth) == 0) return kCorruptedFile;
  // The record describes the picture the store was made for; a file changed since info was
  // taken must not write outside it.
  if ((h.pixelDepth <= 8 ? h.pixelDepth : 24u) != info.bits) return kCorruptedFile;
  h.width = std::min(h.width, info.width);
  h.depth = std::min(h.depth, info.depth);
  if (!in.Skip(h.idLength + SkippedMapBytes(h))) return kReadError;
  try {
    return ReadRows(info, in, h);
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
}

int TargaWrite(ImageInfo& info, const std::string& path) {
  const uint32_t width = info.width;
  const int32_t depth = info.depth;
  const uint32_t bits = info.bits;
  const bool mono = bits == 1;
  const bool mapped = bits >= 2 && bits <= 8;
  const bool sixteen = !mono && !mapped && CurrentSettings().CreateTarga16 == 1;
  // The header holds 16-bit sizes: a larger picture cannot be described in it.
  if (width > 0xFFFF || depth < 0 || depth > 0xFFFF) return kUnsuitableImage;

  OutputFile out;
  if (!out.Create(path)) return kCreateError;
  const size_t rowBytes = mono     ? (width + 7) / 8
                          : mapped ? width
                                   : (sixteen ? 2 : 3) * size_t{width};
  std::vector<uint8_t> row, file;
  try {
    row.assign(static_cast<size_t>(WorkingRowSize(width, bits)), 0);
    file.assign(std::max<size_t>(rowBytes, 4 * size_t{width}), 0);
  } catch (const std::bad_alloc&) {
    return kMemoryError;  // `out` deletes the file
  }

  uint8_t h[kHeaderBytes] = {};
  h[kMapType] = mapped ? 1 : 0;
  h[kImageType] = mono ? 3 : mapped ? 1 : 2;
  StoreLe16(h + kMapLength, mapped ? 256 : 0);
  h[kMapEntrySize] = mapped ? 24 : 0;
  StoreLe16(h + kWidth, width);
  StoreLe16(h + kHeight, static_cast<uint32_t>(depth));
  h[kPixelDepth] = mono ? 1 : mapped ? 8 : sixteen ? 16 : 24;
  h[kDescriptor] = kTopFirst;
  if (!out.Write(h, sizeof h)) return kWriteError;
  if (mapped) {
    uint8_t map[256 * 3];
    PaletteToBytes(info.palette, kBgrEntries, map);
    if (!out.Write(map, sizeof map)) return kWriteError;
  }

  for (int32_t y = 0; y < depth; ++y) {
    if (info.getLine(row, y) != 0) return kCancelled;
    const uint8_t* data = row.data();
    if (mapped && bits <= 4) {
      for (uint32_t x = 0; x < width; ++x)
        file[x] = static_cast<uint8_t>(PixelAt(row.data(), x, 4));
      data = file.data();
    } else if (sixteen) {
      // Each 16-bit value is stored as four bytes, but only two bytes a pixel are written: the
      // file row holds the first half of the pixels, each followed by a zero pixel (difference
      // D24 of the differences table).
      for (uint32_t x = 0; x < width; ++x) {
        const uint8_t* p = row.data() + 3 * static_cast<size_t>(x);
        uint32_t v = (p[0] / 8u) * 1024u + (p[1] / 8u) * 32u + p[2] / 8u;
        StoreLe32(file.data() + 4 * size_t{x}, v);
      }
      data = file.data();
    } else if (!mono && !mapped) {
      SwapRedBlue(row.data(), width);
    }
    if (!out.Write(data, rowBytes)) return kWriteError;
  }
  return out.Commit() ? kOk : kWriteError;
}

}  // namespace pxm
