#include "batch/catalog_page.h"

#include <algorithm>
#include <vector>

#include "core/caption_font.h"

namespace pxm {
namespace {

// The part of [from, to) that lies on a row `width` pixels long.
bool Clip(int64_t& from, int64_t& to, size_t width) {
  from = std::max<int64_t>(from, 0);
  to = std::min<int64_t>(to, static_cast<int64_t>(width));
  return from < to;
}

void DrawThumbnail(const PageRect& place, const ThumbnailRecord& record, uint64_t y,
                   std::span<uint8_t> row) {
  const auto line = static_cast<int64_t>(y) - place.y;
  if (line < 0 || line >= static_cast<int64_t>(place.depth)) return;
  int64_t from = place.x;
  int64_t to = place.Right();
  if (!Clip(from, to, row.size())) return;
  const uint8_t* pixels = record.Row(static_cast<int>(line));
  std::copy(pixels + (from - place.x), pixels + (to - place.x), row.begin() + from);
}

void DrawCaption(const PageRect& area, const std::vector<std::string>& lines, uint64_t y,
                 std::span<uint8_t> row, std::vector<uint8_t>& ink) {
  const auto offset = static_cast<int64_t>(y) - area.y;
  if (offset < 0 || offset >= static_cast<int64_t>(area.depth)) return;
  const auto index = static_cast<size_t>(offset / kCaptionLineHeight);
  if (index >= lines.size()) return;
  const std::string_view text = FitCaption(lines[index], area.width, 1);
  const uint64_t width = CaptionWidth(text, 1);
  const int64_t left = area.x + static_cast<int64_t>((area.width - width) / 2);
  ink.assign(width, 0);
  CaptionInk(text, static_cast<uint32_t>(offset % kCaptionLineHeight), 1, ink);
  for (uint64_t x = 0; x < width; ++x) {
    const int64_t at = left + static_cast<int64_t>(x);
    if (ink[x] && at >= 0 && at < static_cast<int64_t>(row.size()))
      row[static_cast<size_t>(at)] = kCatalogInk;
  }
}

}  // namespace

PageRect ThumbnailPlace(const PageRect& box, const ThumbnailRecord& record) {
  const bool sized = record.width >= 1 && record.width <= kThumbSize && record.depth >= 1 &&
                     record.depth <= kThumbSize;
  const PageSize size =
      sized ? PageSize{record.width, record.depth} : PageSize{kThumbSize, kThumbSize};
  return PlaceInBox(box, size, true);
}

void DrawCatalogRow(const PageGrid& grid, std::span<const CatalogCell> cells, uint64_t y,
                    std::span<uint8_t> row) {
  std::fill(row.begin(), row.end(), kCatalogPaper);
  std::vector<uint8_t> ink;
  const size_t count = std::min(cells.size(), grid.cells.size());
  for (size_t i = 0; i < count; ++i) {
    const GridCell& cell = grid.cells[i];
    if (static_cast<int64_t>(y) < cell.cell.y || static_cast<int64_t>(y) >= cell.cell.Bottom())
      continue;
    if (cells[i].record)
      DrawThumbnail(ThumbnailPlace(cell.box, *cells[i].record), *cells[i].record, y, row);
    DrawCaption(cell.caption, cells[i].caption, y, row, ink);
  }
}

}  // namespace pxm
