#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "thumbs/thumbnail_cache.h"
#include "thumbs/thumbnail_record.h"

// The thumbnail view's page without the window: where the cells lie and what each one shows.
// The desktop program draws what these functions decide.
namespace pxm {

constexpr int kCellWidth = 104;
constexpr int kCellHeight = 116;
constexpr int kGridTop = 57;

struct ThumbGrid {
  int columns = 0;
  int rows = 0;
  int margin = 0;
  int Cells() const { return columns * rows; }
};

// The grid for a client area `width` × `height` above a status bar `statusHeight` tall:
// (W − 40) div 104 columns, (H − S − 58) div 116 rows (none when that is below 0), and the
// margin that centres the columns.
ThumbGrid GridGeometry(int width, int height, int statusHeight);

struct CellPosition {
  int x = 0;
  int y = 0;
};
// Top-left corner of the picture of cell i, counting from the page's first cell.
CellPosition CellAt(const ThumbGrid& grid, int i);

// One record per cell of the page; an empty cell (no entry, or no picture at all) is drawn as a
// cross.
using PageTable = std::vector<std::unique_ptr<ThumbnailRecord>>;

struct PageRequest {
  std::span<const std::string> entries;  // the file list's texts, in list order
  size_t first = 0;                      // entry of the page's first cell
  std::string directory;                 // the directory the list shows
  // Whether a drive letter names a removable drive (drive entries "[-c-]").
  std::function<bool(char drive)> removable;
};

// The picture a file without a thumbnail shows: the ".THN" file `NoThumbnailImage` names, else
// stock picture 3; nothing when neither can be had.
std::unique_ptr<ThumbnailRecord> MissingPicture();

// A new page table for the grid: for each cell with an entry, a stock picture for directory
// ("[name]", "[..]") and drive ("[-c-]") entries, else the file's thumbnail (through `cache`),
// else the missing picture.
PageTable FillPage(const ThumbGrid& grid, const PageRequest& request, ThumbCache& cache);

}  // namespace pxm
