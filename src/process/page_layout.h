#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Where pictures and their captions go on a page: the grid of a catalog page and the one picture
// of a printed page come from the same rules, so a printed catalog page and a written one look
// alike. Everything is in pixels of the page (dots for a printer), origin at the top left.
namespace pxm {

struct PageRect {
  int64_t x = 0;
  int64_t y = 0;
  uint64_t width = 0;
  uint64_t depth = 0;
  int64_t Right() const { return x + static_cast<int64_t>(width); }
  int64_t Bottom() const { return y + static_cast<int64_t>(depth); }
  friend bool operator==(const PageRect&, const PageRect&) = default;
};

struct PageSize {
  uint64_t width = 0;
  uint64_t depth = 0;
  friend bool operator==(const PageSize&, const PageSize&) = default;
};

// The largest size of the proportions of `width` × `depth` that fits `box`, enlarged or reduced,
// each side at least 1 (sides rounded down).
PageSize FitSize(uint64_t width, uint64_t depth, PageSize box);

// A picture of `size` in `box`: centred, or at the box's top left. It may be larger than the box.
PageRect PlaceInBox(const PageRect& box, PageSize size, bool centre);

// A caption line `textWidth` wide, centred on the picture's middle column, held within
// `page`'s width (its left end wins when it is wider than the page).
int64_t CaptionLeft(const PageRect& picture, uint64_t textWidth, uint64_t pageWidth);

// A catalog page: `columns` × `rows` cells, each with a picture box and caption lines under it.
struct GridRequest {
  uint32_t columns = 4;
  uint32_t rows = 5;
  PageSize page;              // {0, 0}: just big enough for the grid
  PageSize box{96, 96};       // the picture box of each cell
  uint32_t captionLines = 0;  // lines of caption under each box
  uint32_t lineHeight = 0;    // pixels per caption line
  uint32_t spacing = 8;       // at least this much between boxes, half of it at the edges
};

struct GridCell {
  PageRect cell;     // the cell's share of the page
  PageRect box;      // where its picture box lies, centred in the cell with the captions
  PageRect caption;  // the caption lines under the box, as wide as the cell less the spacing
};

struct PageGrid {
  PageSize page;
  std::vector<GridCell> cells;  // in reading order: left to right, then top to bottom
};

// Lays the grid out: a page given with both sides is shared out evenly (the odd pixels go round
// the grid), and must give every cell its box, captions and spacing. False, with nothing laid
// out, when it cannot, or when there are no columns or rows.
bool LayoutGrid(const GridRequest& want, PageGrid& grid);

// One picture on a printed page.
struct PrintRequest {
  PageSize page;      // the printable area, in dots
  uint32_t dpiX = 0;  // the printer's dots per inch
  uint32_t dpiY = 0;
  PageSize picture;   // in pixels
  uint32_t ppiX = 0;  // the picture's pixels per inch
  uint32_t ppiY = 0;
  bool fitToPage = true;     // else actual size at the picture's resolution
  bool centre = true;        // else at the top left of the page
  std::string_view caption;  // the file name printed under the picture; empty for none
};

struct PrintPlacement {
  PageRect picture;  // may reach past the page at actual size; the page clips it
  PageRect caption;  // empty when there is no caption
  uint32_t captionScale = 1;
  std::string captionText;  // the caption as it fits the page's width
};

// The caption's scale at a printer's vertical resolution: a line about a seventh of an inch
// tall, never below one pixel per font pixel.
uint32_t PrintCaptionScale(uint32_t dpiY);

// Where the picture and its caption go. At actual size a picture takes pictureWidth × dpiX /
// ppiX dots across (rounded, at least 1) and likewise down; fitted, it takes the largest such
// size of the same shape that fits the page above the caption. The caption sits half a line
// under the picture, centred on it, kept on the page.
PrintPlacement PlacePrint(const PrintRequest& request);

}  // namespace pxm
