#include "formats/wpg.h"

#include <algorithm>
#include <new>
#include <vector>

#include "core/error_codes.h"
#include "core/file_io.h"
#include "core/pixels.h"
#include "core/row_format.h"
#include "core/strings.h"
#include "formats/info_start.h"
#include "formats/wpg_records.h"

namespace pxm {
namespace {

// A code of two bytes repeats up to 256 rows: the most a byte of the file can stand for.
uint64_t BestRatio(const wpg::Picture& p) {
  return 128 * std::max<uint64_t>(wpg::RowBytes(p), 1);
}

// A file row in the row format of the store: two-bit pixels become nibbles; the rest is already
// packed as the store packs it.
void ToStoreRow(const uint8_t* file, const wpg::Picture& p, uint32_t width, uint8_t* out) {
  if (p.bits != 2) {
    std::copy(file, file + (uint64_t{width} * p.bits + 7) / 8, out);
    return;
  }
  for (uint32_t x = 0; x < width; ++x)
    SetPixelAt(out, x, 4, (file[x / 4] >> (6 - 2 * (x % 4))) & 3u);
}

}  // namespace

int WpgInfo(ImageInfo& info, const std::string& path, int /*purpose*/) {
  InputFile in;
  if (int code = OpenForInfo(info, path, in)) return code;
  wpg::Picture p;
  if (int code = wpg::FindPicture(in, p)) return code;
  info.width = p.width;
  info.depth = p.depth;
  info.bits = p.bits;
  info.unpackedSize = UnpackedSize(info.width, info.bits, info.depth);
  const uint64_t picture = wpg::RowBytes(p) * static_cast<uint64_t>(p.depth);
  if (!FileCouldHold(p.dataEnd - p.dataStart, 0, picture, p.packed ? BestRatio(p) : 1))
    return kCorruptedFile;
  info.palette = p.palette;
  info.description = FormatText("WPG %d bitmap, %u bit%s%s", p.version, p.bits,
                                p.bits == 1 ? "" : "s", p.packed ? ", run-length" : "");
  return kOk;
}

int WpgRead(ImageInfo& info, const std::string& path) {
  InputFile in;
  if (!in.Open(path)) return kOpenError;
  wpg::Picture p;
  if (int code = wpg::FindPicture(in, p)) return code;
  // The record describes the picture the store was made for.
  if (p.bits != info.bits) return kCorruptedFile;
  const uint32_t width = std::min(p.width, info.width);
  const int32_t depth = std::min(p.depth, info.depth);
  if (!in.Seek(p.dataStart)) return kReadError;
  try {
    wpg::RowUnpacker rows(in, p);
    std::vector<uint8_t> file(static_cast<size_t>(wpg::RowBytes(p)));
    std::vector<uint8_t> row(static_cast<size_t>(WorkingRowSize(width, info.bits)),
                             static_cast<uint8_t>(info.background));
    for (int32_t y = 0; y < depth; ++y) {
      if (int code = rows.NextRow(file.data())) return code;
      ToStoreRow(file.data(), p, width, row.data());
      if (info.putLine(row, y) != 0) return kCancelled;
    }
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
  return kOk;
}

}  // namespace pxm
