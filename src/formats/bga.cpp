#include "formats/bga.h"

#include <algorithm>
#include <new>
#include <optional>
#include <vector>

#include "core/bytes.h"
#include "core/error_codes.h"
#include "core/file_io.h"
#include "core/names.h"
#include "core/palette_bytes.h"
#include "core/pixels.h"
#include "core/row_format.h"
#include "formats/bmp.h"
#include "formats/info_start.h"

namespace pxm {
namespace {

// Offsets within one 40-byte array entry.
enum EntryOffset : size_t {
  kSignature = 0,       // "BA"
  kEntrySize = 2,       // 40 or 92
  kNext = 6,            // next entry from the file start, 0 = last
  kDisplayWidth = 10,
  kDisplayHeight = 12,
  kBitmapSignature = 14,
  kBitmapHeaderSize = 16,
  kHotSpotX = 20,
  kHotSpotY = 22,
  kDataOffset = 24,
  kCoreHeaderSize = 28,
  kWidth = 32,
  kHeight = 34,
  kPlanes = 36,
  kBits = 38,
};

constexpr size_t kArrayHeader = 14;
constexpr size_t kEntry = 40;

bool GoodArrayHeader(const uint8_t* h) {
  uint32_t size = LoadLe32(h + kEntrySize);
  return h[0] == 'B' && h[1] == 'A' && (size == 40 || size == 92);
}

// The next-entry offset of the good array header at `offset` (0 = last), or nothing when the
// header there is missing or breaks the rules.
std::optional<uint32_t> NextEntry(InputFile& in, uint64_t offset) {
  uint8_t h[kArrayHeader];
  if (!in.Seek(offset) || !in.ReadExact(h, sizeof h) || !GoodArrayHeader(h)) return std::nullopt;
  return LoadLe32(h + kNext);
}

// Walks the chain of array headers. Answers the number of good headers, and in `found` the
// offset of header number `wanted` when there is one. A damaged chain may lead back to a header
// already visited; it then ends there, so that every header counts once and no index reaches a
// header twice. The loop is found by Brent's method, which needs no memory of the headers seen:
// a chain of any length costs a few passes, never an endless walk.
uint32_t WalkEntries(InputFile& in, uint32_t wanted, int64_t& found) {
  found = -1;
  uint32_t count = 0;
  uint64_t offset = 0;
  uint64_t saved = 0;  // the header the walk compares against, moved at every power of two
  uint32_t power = 1;
  uint32_t loopLength = 0;
  for (;;) {
    std::optional<uint32_t> next = NextEntry(in, offset);
    if (!next) return count;
    if (count == wanted) found = static_cast<int64_t>(offset);
    ++count;
    if (*next == 0) return count;
    ++loopLength;
    if (*next == saved) break;
    if (loopLength == power) {
      saved = *next;
      power *= 2;
      loopLength = 0;
    }
    offset = *next;
  }
  // The loop has `loopLength` headers; count those before it by walking two positions that far
  // apart until they meet. The first walk went at least that far, which bounds this one even
  // if the file changed in between.
  const uint32_t walked = count;
  uint64_t lead = 0;
  for (uint32_t i = 0; i < loopLength; ++i) lead = NextEntry(in, lead).value_or(0);
  uint64_t trail = 0;
  uint32_t before = 0;
  while (trail != lead && before < walked) {
    trail = NextEntry(in, trail).value_or(0);
    lead = NextEntry(in, lead).value_or(0);
    ++before;
  }
  count = before + loopLength;
  if (wanted >= count) found = -1;
  return count;
}

struct Entry {
  uint32_t width = 0;
  uint32_t height = 0;
  uint32_t bits = 0;
  uint32_t dataOffset = 0;
  uint64_t colourTable = 0;  // file offset of the colour table
};

// Reads entry number `index`; false when it is missing, damaged, or of the 92-byte kind, which
// counts as an image but is not decoded.
bool LocateEntry(InputFile& in, uint32_t index, Entry& entry) {
  int64_t offset;
  WalkEntries(in, index, offset);
  if (offset < 0) return false;
  uint8_t e[kEntry];
  if (!in.Seek(static_cast<uint64_t>(offset)) || !in.ReadExact(e, sizeof e)) return false;
  if (e[0] != 'B' || e[1] != 'A' || LoadLe32(e + kEntrySize) != 40) return false;
  entry.width = LoadLe16(e + kWidth);
  entry.height = LoadLe16(e + kHeight);
  entry.bits = LoadLe16(e + kBits);
  entry.dataOffset = LoadLe32(e + kDataOffset);
  entry.colourTable = static_cast<uint64_t>(offset) + kEntry;
  return entry.width > 0 && entry.height > 0 && entry.bits > 0 && entry.bits <= 32;
}

}  // namespace

int BgaInfo(ImageInfo& info, const std::string& path, int /*purpose*/) {
  InputFile in;
  if (int code = OpenForInfo(info, path, in)) return code;

  int64_t ignored;
  info.imageCount = WalkEntries(in, UINT32_MAX, ignored);
  Entry entry;
  if (info.imageCount == 0 || !LocateEntry(in, info.imageIndex, entry)) return kNoBitmap;

  info.width = entry.width;
  info.depth = static_cast<int32_t>(entry.height);
  info.bits = entry.bits > 8 ? 24 : entry.bits;
  info.unpackedSize = UnpackedSize(info.width, info.bits, info.depth);
  // Every row is stored whole, padded to four bytes, from the entry's data offset.
  if (!FileCouldHold(in.Size(), entry.dataOffset,
                     RowsBytes(BmpRowBytes(entry.width, entry.bits), entry.height), 1))
    return kCorruptedFile;
  if (entry.bits == 1) {
    info.palette[0] = Rgb{0, 0, 0};
    info.palette[1] = Rgb{255, 255, 255};
  } else if (entry.bits <= 8) {
    const size_t count = size_t{1} << entry.bits;
    uint8_t table[256 * 3];
    if (!in.Seek(entry.colourTable) || !in.ReadExact(table, 3 * count)) return kNoBitmap;
    PaletteFromBytes({table, 3 * count}, kBgrEntries, info.palette);
  }
  return kOk;
}

int BgaRead(ImageInfo& info, const std::string& path) {
  InputFile in;
  if (!in.Open(path)) return kOpenError;
  Entry entry;
  if (!LocateEntry(in, info.imageIndex, entry)) return kNoBitmap;
  const uint32_t width = std::min(entry.width, info.width);
  const int32_t depth = std::min(static_cast<int32_t>(entry.height), info.depth);
  const uint64_t rowBytes = BmpRowBytes(width, entry.bits);
  std::vector<uint8_t> row;
  try {
    row.assign(std::max({WorkingRowSize(width, info.bits), rowBytes, 4 * uint64_t{width}}), 0);
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
  if (!in.Seek(entry.dataOffset)) return kReadError;
  for (int32_t i = 0; i < depth; ++i) {
    if (!in.ReadExact(row.data(), rowBytes)) return kReadError;
    if (entry.bits > 8)
      SwapRedBlue(row.data(), width);
    if (info.putLine(row, depth - 1 - i) != 0) return kCancelled;
  }
  return kOk;
}

int BgaWrite(ImageInfo& info, const std::string& path) {
  const uint32_t width = info.width;
  const int32_t depth = info.depth;
  const uint32_t fileBits = BmpFileBits(info.bits);
  const uint64_t rowBytes = BmpRowBytes(width, fileBits);
  if (width > 0xFFFF || depth > 0xFFFF) return kUnsuitableImage;  // 16-bit sizes only

  OutputFile out;
  if (!out.Create(path)) return kCreateError;
  std::vector<uint8_t> row;
  try {
    row.assign(std::max({WorkingRowSize(width, info.bits), rowBytes, 4 * uint64_t{width}}), 0);
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }

  // The colour table always has 2^bits entries, 16777216 of them for a 24-bit picture.
  const uint64_t colours = uint64_t{1} << fileBits;
  uint8_t e[kEntry] = {};
  e[kSignature] = 'B';
  e[kSignature + 1] = 'A';
  StoreLe32(e + kEntrySize, 40);
  StoreLe32(e + kNext, 0);
  StoreLe16(e + kDisplayWidth, 0);
  StoreLe16(e + kDisplayHeight, 0);
  e[kBitmapSignature] = 'B';
  e[kBitmapSignature + 1] = 'M';
  StoreLe32(e + kBitmapHeaderSize, 26);
  StoreLe16(e + kHotSpotX, 75);  // written this way by every earlier release
  StoreLe16(e + kHotSpotY, 75);
  StoreLe32(e + kDataOffset, static_cast<uint32_t>(kEntry + 3 * colours));
  StoreLe32(e + kCoreHeaderSize, 12);
  StoreLe16(e + kWidth, width);
  StoreLe16(e + kHeight, static_cast<uint32_t>(depth));
  StoreLe16(e + kPlanes, 1);
  StoreLe16(e + kBits, fileBits);
  if (!out.Write(e, sizeof e)) return kWriteError;

  if (info.bits == 1) {
    info.palette[0] = Rgb{0, 0, 0};
    info.palette[1] = Rgb{255, 255, 255};
  }
  // Entries past the palette's 256 (24-bit pictures only) are written black.
  std::vector<uint8_t> chunk(3 * 256, 0);
  for (uint64_t first = 0; first < colours; first += 256) {
    size_t n = static_cast<size_t>(std::min<uint64_t>(256, colours - first));
    std::fill(chunk.begin(), chunk.end(), 0);
    if (first == 0) PaletteToBytes(info.palette, kBgrEntries, {chunk.data(), 3 * n});
    if (!out.Write(chunk.data(), 3 * n)) return kWriteError;
  }

  for (int32_t i = 0; i < depth; ++i) {
    if (info.getLine(row, depth - 1 - i) != 0) return kCancelled;
    if (fileBits == 24)
      SwapRedBlue(row.data(), width);
    if (!out.Write(row.data(), rowBytes)) return kWriteError;
  }
  return out.Commit() ? kOk : kWriteError;
}

}  // namespace pxm
