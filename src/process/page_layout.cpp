#include "process/page_layout.h"

#include <algorithm>

#include "core/caption_font.h"

namespace pxm {
namespace {

constexpr uint64_t kLargestSide = 0xFFFFFFFFu;

// Keeps both sides within 32 bits, halving them together, so that the products below stay
// within 64 bits; only absurd sizes are touched, and their shape barely changes.
void Tame(uint64_t& a, uint64_t& b) {
  while (a > kLargestSide || b > kLargestSide) {
    a = std::max<uint64_t>(a >> 1, 1);
    b = std::max<uint64_t>(b >> 1, 1);
  }
}

// value × numerator / denominator, rounded to nearest, at least 1.
uint64_t Scale(uint64_t value, uint64_t numerator, uint64_t denominator) {
  Tame(value, numerator);
  const uint64_t scaled = (value * numerator + denominator / 2) / denominator;
  return std::max<uint64_t>(scaled, 1);
}

}  // namespace

PageSize FitSize(uint64_t width, uint64_t depth, PageSize box) {
  if (width == 0 || depth == 0) return {};
  Tame(width, depth);
  uint64_t boxWidth = box.width;
  uint64_t boxDepth = box.depth;
  Tame(boxWidth, boxDepth);
  // Taller than the box's shape (or the same): the depth fills the box.
  if (width * boxDepth <= depth * boxWidth)
    return {std::max<uint64_t>(width * boxDepth / depth, 1), std::max<uint64_t>(boxDepth, 1)};
  return {std::max<uint64_t>(boxWidth, 1), std::max<uint64_t>(depth * boxWidth / width, 1)};
}

PageRect PlaceInBox(const PageRect& box, PageSize size, bool centre) {
  PageRect r{box.x, box.y, size.width, size.depth};
  if (centre) {
    r.x += (static_cast<int64_t>(box.width) - static_cast<int64_t>(size.width)) / 2;
    r.y += (static_cast<int64_t>(box.depth) - static_cast<int64_t>(size.depth)) / 2;
  }
  return r;
}

int64_t CaptionLeft(const PageRect& picture, uint64_t textWidth, uint64_t pageWidth) {
  const int64_t middle = picture.x + static_cast<int64_t>(picture.width / 2);
  int64_t left = middle - static_cast<int64_t>(textWidth / 2);
  left = std::min(left, static_cast<int64_t>(pageWidth) - static_cast<int64_t>(textWidth));
  return std::max<int64_t>(left, 0);
}

bool LayoutGrid(const GridRequest& want, PageGrid& grid) {
  grid = {};
  if (want.columns == 0 || want.rows == 0) return false;
  const uint64_t contentDepth =
      want.box.depth + static_cast<uint64_t>(want.captionLines) * want.lineHeight;
  const uint64_t needWidth = want.box.width + want.spacing;
  const uint64_t needDepth = contentDepth + want.spacing;
  PageSize page = want.page;
  if (page.width == 0 || page.depth == 0) page = {needWidth * want.columns, needDepth * want.rows};
  const uint64_t cellWidth = page.width / want.columns;
  const uint64_t cellDepth = page.depth / want.rows;
  if (cellWidth < needWidth || cellDepth < needDepth) return false;

  const auto left = static_cast<int64_t>((page.width - cellWidth * want.columns) / 2);
  const auto top = static_cast<int64_t>((page.depth - cellDepth * want.rows) / 2);
  grid.page = page;
  grid.cells.reserve(static_cast<size_t>(want.columns) * want.rows);
  for (uint32_t row = 0; row < want.rows; ++row) {
    for (uint32_t column = 0; column < want.columns; ++column) {
      GridCell c;
      c.cell = {left + static_cast<int64_t>(column * cellWidth),
                top + static_cast<int64_t>(row * cellDepth), cellWidth, cellDepth};
      // The box and its captions form one block, centred in the cell.
      const PageRect block = PlaceInBox(c.cell, {cellWidth, contentDepth}, true);
      c.box = PlaceInBox({block.x, block.y, cellWidth, want.box.depth}, want.box, true);
      c.caption = {c.cell.x + want.spacing / 2, c.box.Bottom(), cellWidth - want.spacing,
                   contentDepth - want.box.depth};
      grid.cells.push_back(c);
    }
  }
  return true;
}

uint32_t PrintCaptionScale(uint32_t dpiY) {
  return std::max(dpiY / 72, 1u);
}

PrintPlacement PlacePrint(const PrintRequest& request) {
  PrintPlacement p;
  const PageRect page{0, 0, request.page.width, request.page.depth};
  uint64_t captionDepth = 0;
  uint64_t gap = 0;
  if (!request.caption.empty()) {
    p.captionScale = PrintCaptionScale(request.dpiY);
    captionDepth = static_cast<uint64_t>(kCaptionLineHeight) * p.captionScale;
    gap = captionDepth / 2;
    p.captionText = FitCaption(request.caption, page.width, p.captionScale);
  }

  const PageSize natural{Scale(request.picture.width, request.dpiX, std::max(request.ppiX, 1u)),
                         Scale(request.picture.depth, request.dpiY, std::max(request.ppiY, 1u))};
  PageRect area = page;
  area.depth = page.depth > captionDepth + gap ? page.depth - captionDepth - gap : 0;
  // Fitted, the shape comes from the unrounded sizes: pixels × dots per inch / pixels per inch
  // on each side, both brought over the common denominator ppiX × ppiY.
  PageSize size = natural;
  if (request.fitToPage) {
    uint64_t across = request.picture.width;
    uint64_t down = request.picture.depth;
    uint64_t dpiX = request.dpiX;
    uint64_t dpiY = request.dpiY;
    Tame(across, dpiX);
    Tame(down, dpiY);
    across *= dpiX;
    down *= dpiY;
    uint64_t ppiY = std::max(request.ppiY, 1u);
    uint64_t ppiX = std::max(request.ppiX, 1u);
    Tame(across, ppiY);
    Tame(down, ppiX);
    size = FitSize(across * ppiY, down * ppiX, {area.width, area.depth});
  }
  p.picture = PlaceInBox(area, size, request.centre);

  if (!p.captionText.empty()) {
    const uint64_t textWidth = CaptionWidth(p.captionText, p.captionScale);
    // An actual-size picture taller than the page would push its caption off it.
    const int64_t lowest = static_cast<int64_t>(page.depth) - static_cast<int64_t>(captionDepth);
    p.caption = {
        CaptionLeft(p.picture, textWidth, page.width),
        std::max<int64_t>(std::min(p.picture.Bottom() + static_cast<int64_t>(gap), lowest), 0),
        textWidth, captionDepth};
  }
  return p;
}

}  // namespace pxm
