#include "formats/clipboard.h"

#include <new>
#include <vector>

#include "core/bytes.h"
#include "core/error_codes.h"
#include "core/fixed_palette.h"
#include "core/host.h"
#include "core/palette_bytes.h"
#include "core/pixels.h"
#include "core/row_format.h"

namespace pxm {

int ClipboardWrite(ImageInfo& info, const std::string& /*path*/) {
  const uint32_t bits = info.bits <= 1 ? 1 : info.bits <= 4 ? 4 : info.bits <= 8 ? 8 : 24;
  const uint64_t rowBytes = ((static_cast<uint64_t>(info.width) * bits + 31) / 32) * 4;
  const uint32_t colours = bits == 24 ? 0 : (1u << bits);
  const uint64_t size = 40 + 4ull * colours + rowBytes * static_cast<uint64_t>(info.depth);
  ClipboardPicture picture;
  std::vector<uint8_t> row;
  try {
    if (info.depth < 0 || size > SIZE_MAX) return kMemoryError;
    picture.packedDib.assign(static_cast<size_t>(size), 0);
    row.assign(static_cast<size_t>(std::max<uint64_t>(rowBytes, WorkingRowSize(info.width, info.bits))), 0);
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }

  uint8_t* dib = picture.packedDib.data();
  StoreLe32(dib, 40);
  StoreLe32(dib + 4, info.width);
  StoreLe32(dib + 8, static_cast<uint32_t>(info.depth));
  StoreLe16(dib + 12, 1);
  StoreLe16(dib + 14, bits);
  PaletteToBytes(info.palette, kBgrPaddedEntries, {dib + 40, 4 * size_t{colours}});
  uint8_t* rows = dib + 40 + 4 * colours;
  for (int32_t i = 0; i < info.depth; ++i) {
    if (info.getLine(row, info.depth - 1 - i) != 0) return kCancelled;
    if (bits == 24)
      SwapRedBlue(row.data(), info.width);
    std::memcpy(rows + static_cast<uint64_t>(i) * rowBytes, row.data(), rowBytes);
  }

  // A true-colour picture is shown on palette displays through the fixed palette.
  const uint32_t entries = bits == 24 ? 256 : colours;
  const Palette& source = bits == 24 ? ThumbGetPalette(0) : info.palette;
  picture.palette.resize(4 * static_cast<size_t>(entries));
  PaletteToBytes(source, kRgbPaddedEntries, picture.palette);
  return HostOf(info).SetClipboard(picture);
}

}  // namespace pxm
