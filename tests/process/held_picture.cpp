#include "process/held_picture.h"

#include <gtest/gtest.h>

#include "core/error_codes.h"
#include "core/sinks.h"
#include "core/sources.h"

namespace pxm::test {

HeldPicture::HeldPicture(const Picture& p, uint32_t recordBits, bool spill) {
  EXPECT_EQ(store.Create(p.width, p.depth, p.bits, spill ? kStoreSpillAlways : 0u), kOk);
  for (int32_t y = 0; y < p.depth; ++y) store.PutRowQuiet(p.rows[static_cast<size_t>(y)], y);
  info.host = &host;
  info.width = p.width;
  info.depth = p.depth;
  info.bits = recordBits;
  info.palette = p.palette;
  info.getLine = PlainRowSource(store);
  info.putLine = QuietRowSink(store);
}

Picture HeldPicture::Result() {
  Picture out = Picture::Blank(info.width, info.depth, info.bits);
  out.palette = info.palette;
  for (int32_t y = 0; y < info.depth; ++y) store.GetRowQuiet(out.rows[static_cast<size_t>(y)], y);
  return out;
}

Picture FromPixels(uint32_t width, uint32_t bits, const std::vector<std::vector<uint32_t>>& rows) {
  Picture p = Picture::Blank(width, static_cast<int32_t>(rows.size()), bits);
  for (size_t y = 0; y < rows.size(); ++y)
    for (uint32_t x = 0; x < width; ++x) p.SetPixel(x, static_cast<int32_t>(y), rows[y][x]);
  return p;
}

std::vector<std::vector<uint32_t>> PixelsOf(const Picture& p) {
  std::vector<std::vector<uint32_t>> rows(static_cast<size_t>(p.depth));
  for (int32_t y = 0; y < p.depth; ++y)
    for (uint32_t x = 0; x < p.width; ++x) rows[static_cast<size_t>(y)].push_back(p.Pixel(x, y));
  return rows;
}

}  // namespace pxm::test
