#include "formats/rle.h"

#include <new>
#include <vector>

#include "core/bytes.h"
#include "core/error_codes.h"
#include "core/file_io.h"
#include "core/pixels.h"
#include "core/row_format.h"
#include "formats/bmp.h"
#include "formats/info_start.h"
#include "formats/rle_encode.h"
#include "formats/rle_rows.h"

namespace pxm {
namespace {

// Offsets in the 14-byte file header and the 40-byte information header after it.
enum HeaderOffset : size_t {
  kFileSize = 2,
  kDataOffset = 10,
  kHeaderSize = 14,
  kWidth = 18,
  kHeight = 22,
  kPlanes = 26,
  kBits = 28,
  kCompression = 30,
  kImageSize = 34,
  kColoursUsed = 46,
  kColoursImportant = 50,
};
constexpr size_t kHeaderBytes = 54;
constexpr uint32_t kRle8 = 1;
constexpr uint32_t kRle4 = 2;

// Puts the sink back when the read is over, whichever way it ends.
struct SinkRestorer {
  ImageInfo& info;
  LineSink saved;
  ~SinkRestorer() { info.putLine = std::move(saved); }
};

}  // namespace

int RleInfo(ImageInfo& info, const std::string& path, int purpose) {
  if (int code = BmpInfo(info, path, purpose)) return code;
  InputFile in;
  uint8_t h[kHeaderBytes];
  if (!in.Open(path)) return kOpenError;
  if (!in.ReadExact(h, sizeof h)) return kCorruptedFile;
  const uint32_t bits = LoadLe16(h + kBits);
  const uint32_t compression = LoadLe32(h + kCompression);
  const bool os2 = LoadLe32(h + kHeaderSize) == 12;
  const bool rle4 = !os2 && bits == 4 && compression == kRle4;
  const bool rle8 = !os2 && bits == 8 && compression == kRle8;
  // Files without runs read as the bitmaps they are.
  if (!rle4 && !rle8) return kOk;
  info.description = rle4 ? "Windows RLE4 bitmap" : "Windows RLE8 bitmap";
  const uint64_t picture = PackedPictureBytes(info.width, static_cast<uint64_t>(info.depth), bits);
  if (!FileCouldHold(in.Size(), LoadLe32(h + kDataOffset), picture, RleBestRatio(rle4)))
    return kCorruptedFile;
  return kOk;
}

int RleRead(ImageInfo& info, const std::string& path) {
  // The bitmap reader calls a stop from the sink a read error, as bitmaps always have; here it
  // is what the user asked for.
  bool stopped = false;
  SinkRestorer restore{info, info.putLine};
  info.putLine = [&](std::span<uint8_t> row, int32_t y) {
    const int answer = restore.saved(row, y);
    if (answer != 0) stopped = true;
    return answer;
  };
  const int code = BmpRead(info, path);
  return stopped ? kCancelled : code;
}

int RleWrite(ImageInfo& info, const std::string& path) {
  const uint32_t width = info.width;
  const int32_t depth = info.depth;
  if (info.bits == 0 || info.bits > 8 || width == 0 || depth <= 0) return kUnsuitableImage;
  // One-bit pictures go out as 4-bit runs with black and white as the first two colours.
  const bool fourBit = info.bits <= 4;
  const uint32_t fileBits = fourBit ? 4 : 8;
  const uint32_t colours = 1u << fileBits;
  const uint32_t dataOffset = kHeaderBytes + 4 * colours;

  OutputFile out;
  if (!out.Create(path)) return kCreateError;
  // The header is written again at the end, when the size of the runs is known.
  uint8_t h[kHeaderBytes] = {};
  if (!out.Write(h, sizeof h)) return kWriteError;
  uint8_t table[256 * 4] = {};
  for (uint32_t i = 0; i < colours; ++i) {
    Rgb c = info.palette[i];
    if (info.bits == 1) c = i == 0 ? Rgb{0, 0, 0} : i == 1 ? Rgb{255, 255, 255} : Rgb{};
    table[4 * i] = c.blue;
    table[4 * i + 1] = c.green;
    table[4 * i + 2] = c.red;
  }
  if (!out.Write(table, 4 * colours)) return kWriteError;

  std::vector<uint8_t> row;
  std::vector<uint8_t> pixels;
  std::vector<uint8_t> codes;
  try {
    row.assign(WorkingRowSize(width, info.bits), 0);
    pixels.assign(width, 0);
    codes.reserve(2 * size_t{width} + 16);
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
  const uint32_t storage = StorageBits(info.bits);
  uint64_t dataBytes = 0;
  for (int32_t i = 0; i < depth; ++i) {
    if (info.getLine(row, depth - 1 - i) != 0) return kCancelled;
    for (uint32_t x = 0; x < width; ++x)
      pixels[x] = static_cast<uint8_t>(PixelAt(row.data(), x, storage));
    codes.clear();
    EncodeRleRow(pixels, fourBit, codes);
    codes.push_back(0);                       // end of line
    codes.push_back(i + 1 == depth ? 1 : 0);  // the last row ends the bitmap instead
    if (!out.Write(codes.data(), codes.size())) return kWriteError;
    dataBytes += codes.size();
  }
  // The header's 32-bit sizes must hold the file.
  if (dataBytes > UINT32_MAX - dataOffset) return kUnsuitableImage;

  h[0] = 'B';
  h[1] = 'M';
  StoreLe32(h + kFileSize, static_cast<uint32_t>(dataOffset + dataBytes));
  StoreLe32(h + kDataOffset, dataOffset);
  StoreLe32(h + kHeaderSize, 40);
  StoreLe32(h + kWidth, width);
  StoreLe32(h + kHeight, static_cast<uint32_t>(depth));
  StoreLe16(h + kPlanes, 1);
  StoreLe16(h + kBits, fileBits);
  StoreLe32(h + kCompression, fourBit ? kRle4 : kRle8);
  StoreLe32(h + kImageSize, static_cast<uint32_t>(dataBytes));
  StoreLe32(h + kColoursUsed, colours);
  StoreLe32(h + kColoursImportant, colours);
  if (!out.Seek(0) || !out.Write(h, sizeof h)) return kWriteError;
  return out.Commit() ? kOk : kWriteError;
}

}  // namespace pxm
