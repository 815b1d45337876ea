#include "formats/bmp.h"

#include <algorithm>
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
#include "formats/rle_rows.h"

namespace pxm {
namespace {

// Offsets in the first 54 bytes of a bitmap file.
enum HeaderOffset : size_t {
  kSignature = 0,     // "BM"
  kFileSize = 2,
  kDataOffset = 10,
  kHeaderSize = 14,   // 40 Windows, 12 OS/2
  kWidth = 18,        // 32-bit Windows; 16-bit OS/2
  kHeight = 22,       // 32-bit Windows; OS/2 height is at 20
  kOs2Height = 20,
  kOs2Bits = 24,
  kPlanes = 26,
  kBits = 28,
  kCompression = 30,
  kColoursUsed = 46,
  kColoursImportant = 50,
};

constexpr size_t kReadHeaderBytes = 54;
constexpr uint32_t kOs2HeaderSize = 12;
constexpr uint32_t kRle8 = 1;
constexpr uint32_t kRle4 = 2;

struct Header {
  bool os2 = false;
  uint32_t width = 0;
  int32_t depth = 0;
  uint32_t fileBits = 0;
  uint32_t compression = 0;
  uint32_t dataOffset = 0;
};

Header ParseHeader(const uint8_t* h) {
  Header out;
  out.os2 = LoadLe32(h + kHeaderSize) == kOs2HeaderSize;
  out.dataOffset = LoadLe32(h + kDataOffset);
  if (out.os2) {
    out.width = LoadLe16(h + kWidth);
    out.depth = LoadLe16(h + kOs2Height);
    out.fileBits = LoadLe16(h + kOs2Bits);
  } else {
    out.width = LoadLe32(h + kWidth);
    out.depth = static_cast<int32_t>(LoadLe32(h + kHeight));
    out.fileBits = LoadLe16(h + kBits);
    out.compression = LoadLe32(h + kCompression);
  }
  return out;
}

bool HasSignature(const uint8_t* h) { return h[0] == 'B' && h[1] == 'M'; }

// Whether the file could hold the pixel data the header declares. Uncompressed rows are padded
// to four bytes but the last, which may end the file. In run-length data a code pair makes at
// most 255 pixels: 255 bytes of 8-bit rows, 128 of 4-bit ones. (The end-of-bitmap and delta codes
// could leave any number of rows unwritten with a few bytes; a file that says it is that large
// and holds so little is taken for damage.)
bool FileCouldHoldData(const Header& h, uint64_t fileSize) {
  const auto depth = static_cast<uint64_t>(h.depth);
  const uint64_t packed = PackedPictureBytes(h.width, depth, h.fileBits);
  if (h.fileBits == 8 && h.compression == kRle8)
    return FileCouldHold(fileSize, h.dataOffset, packed, 128);
  if (h.fileBits == 4 && h.compression == kRle4)
    return FileCouldHold(fileSize, h.dataOffset, packed, 64);
  const uint64_t lastRow = PackedPictureBytes(h.width, 1, h.fileBits);
  const uint64_t rows = RowsBytes(BmpRowBytes(h.width, h.fileBits), depth - 1);
  return FileCouldHold(fileSize, h.dataOffset,
                       rows > UINT64_MAX - lastRow ? UINT64_MAX : rows + lastRow, 1);
}

// Row buffers hold a stored row, the codec's working row, a whole file row, and the four bytes
// per pixel that the 16-bit unpacking addresses, whichever is largest; odd bit counts (2, 3,
// 32, 64) then cannot reach past the end.
size_t RowBufferSize(uint32_t width, uint32_t bits, uint64_t fileRowBytes) {
  uint64_t n = std::max({WorkingRowSize(width, bits), fileRowBytes, 4 * static_cast<uint64_t>(width)});
  if (n > SIZE_MAX / 4) throw std::bad_alloc();
  return static_cast<size_t>(n);
}

int ReadRows(ImageInfo& info, InputFile& in, const Header& h) {
  const uint32_t width = h.width;
  const uint32_t bits = h.fileBits;
  const bool rle8 = bits == 8 && h.compression == kRle8;
  const bool rle4 = bits == 4 && h.compression == kRle4;
  const uint64_t rowBytes = BmpRowBytes(width, bits);
  const size_t size = RowBufferSize(width, info.bits, rowBytes);
  std::vector<uint8_t> row(size, 0);
  std::vector<uint8_t> raw(size, 0);

  if (!in.Seek(h.dataOffset)) return kReadError;
  RleRowUnpacker unpacker(rle8 ? RleRowUnpacker::Mode::kRle8 : RleRowUnpacker::Mode::kRle4);
  unpacker.Reset();

  for (int32_t i = 0; i < h.depth; ++i) {
    if (rle8 || rle4) {
      int64_t n = unpacker.UnpackRow(in, row, width);
      if (n == -1) break;  // the end-of-bitmap mark: rows not delivered stay as created
      if (static_cast<uint64_t>(n) < unpacker.RowBytes(width)) return kReadError;
    } else if (bits == 1 || bits == 4 || bits == 8) {
      if (!in.ReadExact(row.data(), rowBytes)) return kReadError;
    } else if (bits == 16) {
      if (!in.ReadExact(raw.data(), rowBytes)) return kReadError;
      // Four bytes are taken per output pixel, so the picture shows every other 16-bit pixel:
      // difference D4 of the differences table, kept because users' conversions depend on it.
      for (uint32_t x = 0; x < width; ++x) {
        uint32_t word = LoadLe32(raw.data() + 4 * static_cast<size_t>(x));
        row[3 * x] = static_cast<uint8_t>(((word >> 10) & 31) * 8);
        row[3 * x + 1] = static_cast<uint8_t>(((word >> 5) & 31) * 8);
        row[3 * x + 2] = static_cast<uint8_t>((word & 31) * 8);
      }
    } else {
      // 24 bits, and deeper files taken in 3-byte steps the same way.
      if (!in.ReadExact(row.data(), rowBytes)) return kReadError;
      SwapRedBlue(row.data(), width);
    }
    // An abort from the sink is reported as a read error, as it always has been for bitmaps.
    if (info.putLine(row, h.depth - 1 - i) != 0) return kReadError;
  }
  return kOk;
}

}  // namespace

int BmpInfo(ImageInfo& info, const std::string& path, int /*purpose*/) {
  InputFile in;
  if (int code = OpenForInfo(info, path, in)) return code;
  info.palette[0] = Rgb{0, 0, 0};
  info.palette[1] = Rgb{255, 255, 255};

  uint8_t h[kReadHeaderBytes];
  if (!in.ReadExact(h, sizeof h) || !HasSignature(h)) return kCorruptedFile;
  Header header = ParseHeader(h);
  info.width = header.width;
  info.depth = header.depth;
  info.bits = header.fileBits > 8 ? 24 : header.fileBits;
  info.description = header.os2 ? "OS/2 bitmap" : "Windows bitmap";
  // Top-down files (negative height) are not read; empty or bit-less headers are damage.
  if (header.depth < 0) return kUnsupportedFormat;
  if (header.width == 0 || header.depth == 0 || header.fileBits == 0) return kCorruptedFile;
  info.unpackedSize = UnpackedSize(info.width, info.bits, info.depth);

  // Rows that cannot all be in the file mean a damaged header: refusing here keeps an absurd
  // size from ever reaching the image store.
  if (!FileCouldHoldData(header, in.Size())) return kCorruptedFile;

  // The colour table is taken to follow a 40-byte header whatever the header says.
  if (!in.Seek(header.os2 ? 26 : kReadHeaderBytes)) return kCorruptedFile;
  if (info.bits >= 2 && info.bits <= 8) {
    const size_t entry = header.os2 ? 3 : 4;
    const size_t count = size_t{1} << info.bits;
    uint8_t table[256 * 4];
    if (!in.ReadExact(table, entry * count)) return kCorruptedFile;
    PaletteFromBytes({table, entry * count}, entry == 3 ? kBgrEntries : kBgrPaddedEntries,
                     info.palette);
  } else if (info.bits == 24) {
    for (int i = 0; i < 256; ++i) {
      auto v = static_cast<uint8_t>(i);
      info.palette[static_cast<size_t>(i)] = Rgb{v, v, v};
    }
  }
  // One-bit files read no colour table: they always show black and white.
  return kOk;
}

int BmpRead(ImageInfo& info, const std::string& path) {
  InputFile in;
  if (!in.Open(path, info.embedded)) return kOpenError;
  uint8_t h[kReadHeaderBytes];
  if (!in.ReadExact(h, sizeof h)) return kReadError;
  if (!HasSignature(h)) return kCorruptedFile;
  Header header = ParseHeader(h);
  // The record describes the picture the store was made for; a file changed since info was
  // taken must not write outside it.
  header.width = std::min(header.width, info.width);
  header.depth = std::min(header.depth, info.depth);
  try {
    return ReadRows(info, in, header);
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
}

int BmpWrite(ImageInfo& info, const std::string& path) {
  const bool os2 = CurrentSettings().WriteOS2Bitmaps != 0;
  const uint32_t width = info.width;
  const int32_t depth = info.depth;
  const uint32_t fileBits = BmpFileBits(info.bits);
  const uint64_t rowBytes = BmpRowBytes(width, fileBits);
  // The core header has 16-bit sizes: a larger picture cannot be described in it.
  if (os2 && (width > 0xFFFF || depth > 0xFFFF)) return kUnsuitableImage;

  OutputFile out;
  if (!out.Create(path)) return kCreateError;
  std::vector<uint8_t> row;
  try {
    row.assign(RowBufferSize(width, info.bits, rowBytes), 0);
  } catch (const std::bad_alloc&) {
    return kMemoryError;  // `out` deletes the file
  }

  const uint32_t colours = fileBits == 24 ? 0 : (1u << fileBits);
  const uint32_t entrySize = os2 ? 3 : 4;
  const uint32_t headerSize = os2 ? 26 : 54;
  const uint32_t dataOffset = headerSize + colours * entrySize;
  uint8_t h[54] = {};
  h[0] = 'B';
  h[1] = 'M';
  StoreLe32(h + kFileSize, static_cast<uint32_t>(rowBytes * static_cast<uint64_t>(depth) + dataOffset));
  StoreLe32(h + kDataOffset, dataOffset);
  if (os2) {
    StoreLe32(h + kHeaderSize, kOs2HeaderSize);
    StoreLe16(h + kWidth, width);
    StoreLe16(h + kOs2Height, static_cast<uint32_t>(depth));
    StoreLe16(h + 22, 1);
    StoreLe16(h + kOs2Bits, fileBits);
  } else {
    StoreLe32(h + kHeaderSize, 40);
    StoreLe32(h + kWidth, width);
    StoreLe32(h + kHeight, static_cast<uint32_t>(depth));
    StoreLe16(h + kPlanes, 1);
    StoreLe16(h + kBits, fileBits);
    // One shifted by the bit count, also for 24-bit files (16777216): older readers of these
    // files expect it.
    StoreLe32(h + kColoursUsed, 1u << fileBits);
    StoreLe32(h + kColoursImportant, 1u << fileBits);
  }
  if (!out.Write(h, headerSize)) return kWriteError;

  uint8_t table[256 * 4] = {};
  Palette colourTable = info.palette;
  // One-bit files always get black then white, whatever the picture's palette says.
  if (fileBits == 1) {
    colourTable[0] = Rgb{0, 0, 0};
    colourTable[1] = Rgb{255, 255, 255};
  }
  PaletteToBytes(colourTable, entrySize == 3 ? kBgrEntries : kBgrPaddedEntries,
                 {table, colours * entrySize});
  if (!out.Write(table, colours * entrySize)) return kWriteError;

  for (int32_t i = 0; i < depth; ++i) {
    if (info.getLine(row, depth - 1 - i) != 0) return kCancelled;
    if (fileBits == 24) SwapRedBlue(row.data(), width);
    if (!out.Write(row.data(), rowBytes)) return kWriteError;
  }
  return out.Commit() ? kOk : kWriteError;
}

}  // namespace pxm
