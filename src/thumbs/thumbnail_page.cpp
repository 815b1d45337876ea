#include "thumbs/thumbnail_page.h"

#include <algorithm>
#include <new>

#include "config/settings.h"
#include "core/names.h"
#include "thumbs/stock_thumbnails.h"
#include "thumbs/thumbnail_file.h"
#include "thumbs/thumbnail_path.h"

namespace pxm {
namespace {

// A cell's record, or nothing when memory runs out: the cell then shows the cross.
std::unique_ptr<ThumbnailRecord> Fetch(const std::string& entry, const PageRequest& request,
                                       const ThumbnailRecord* missing, ThumbCache& cache) {
  std::unique_ptr<ThumbnailRecord> record;
  try {
    record = std::make_unique<ThumbnailRecord>();
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
  if (!entry.empty() && entry[0] == '[') {
    const bool drive = entry.size() == 5 && entry[1] == '-' && entry[3] == '-';
    int stock = kStockDirectory;
    if (drive)
      stock = request.removable && request.removable(entry[2]) ? kStockRemovableDrive
                                                               : kStockOtherDrive;
    ThumbGetStockThumbnail(*record, stock);
    return record;
  }
  if (ThumbReadThumbnail(*record, ThumbnailFileOf(JoinPath(request.directory, entry)), &cache))
    return record;
  if (!missing) return nullptr;
  *record = *missing;
  return record;
}

}  // namespace

ThumbGrid GridGeometry(int width, int height, int statusHeight) {
  ThumbGrid grid;
  grid.columns = std::max((width - 40) / kCellWidth, 0);
  grid.rows = std::max((height - statusHeight - 58) / kCellHeight, 0);
  grid.margin = (width - grid.columns * kCellWidth) / 2;
  return grid;
}

CellPosition CellAt(const ThumbGrid& grid, int i) {
  if (grid.columns <= 0) return {grid.margin, kGridTop};
  return {grid.margin + (i % grid.columns) * kCellWidth,
          (i / grid.columns) * kCellHeight + kGridTop};
}

std::unique_ptr<ThumbnailRecord> MissingPicture() {
  try {
    auto record = std::make_unique<ThumbnailRecord>();
    const std::string& named = CurrentSettings().NoThumbnailImage;
    if (!named.empty() && ThumbReadThumbnail(*record, named)) return record;
    if (ThumbGetStockThumbnail(*record, kStockMissing)) return record;
  } catch (const std::bad_alloc&) {
  }
  return nullptr;
}

PageTable FillPage(const ThumbGrid& grid, const PageRequest& request, ThumbCache& cache) {
  PageTable table(static_cast<size_t>(grid.Cells()));
  const auto missing = MissingPicture();
  for (size_t i = 0; i < table.size() && request.first + i < request.entries.size(); ++i)
    table[i] = Fetch(request.entries[request.first + i], request, missing.get(), cache);
  return table;
}

}  // namespace pxm
