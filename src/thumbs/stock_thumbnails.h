#pragma once

#include "thumbs/thumbnail_record.h"

namespace pxm {

// The stock pictures, drawn in the fixed palette.
enum StockThumbnail : int {
  kStockRemovableDrive = 0,
  kStockOtherDrive = 1,
  kStockDirectory = 2,
  kStockMissing = 3,  // the default picture of a file without a thumbnail
};

// Fills `record` with stock picture `which`; non-zero on success, 0 for an unknown number.
int ThumbGetStockThumbnail(ThumbnailRecord& record, int which);

}  // namespace pxm
