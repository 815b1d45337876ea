#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "core/fixed_palette.h"
#include "process/page_layout.h"
#include "thumbs/thumbnail_record.h"

// Drawing a catalog page: thumbnails and their captions on white paper, one byte per pixel in
// the fixed palette the thumbnails are drawn in.
namespace pxm {

constexpr uint8_t kCatalogPaper = ThumbPaletteIndex(255, 255, 255);
constexpr uint8_t kCatalogInk = ThumbPaletteIndex(0, 0, 0);

// What one cell shows.
struct CatalogCell {
  const ThumbnailRecord* record = nullptr;  // null: nothing but paper
  std::vector<std::string> caption;         // lines under the box, cut to its width when drawn
};

// Where a record's picture (its width × depth, the whole record when it names no size) lies in
// a cell's box: centred.
PageRect ThumbnailPlace(const PageRect& box, const ThumbnailRecord& record);

// Draws row `y` of the page `grid` lays out into `row` (the page's width): paper, each cell's
// thumbnail in its box, and each caption line centred in the cell's caption area in ink.
void DrawCatalogRow(const PageGrid& grid, std::span<const CatalogCell> cells, uint64_t y,
                    std::span<uint8_t> row);

}  // namespace pxm
