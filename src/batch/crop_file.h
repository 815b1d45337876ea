#pragma once

#include <string>

#include "batch/operation.h"
#include "process/crop_selection.h"

namespace pxm {

// The crop window's save: writes the rectangle `rect` (image coordinates) of the picture held in
// `store`, which `current` describes, as `output` in the format of row `destRow`, through the
// cropping source. Refuses an unknown row (8), a row that cannot hold the depth (12), a row
// without a writer (5) and a rectangle with nothing of the picture in it (13); a rectangle that
// runs past the picture is cut at its edges. The current record is left as it was; a failed
// write leaves no file.
int SaveCrop(Host& host, const ImageInfo& current, ImageStore& store, CropRect rect, int destRow,
             const std::string& output, FormatTableView table = FormatTable());

// Reads one file as the crop window shows it and saves `rect` of it under the usual output name.
int CropFile(Host& host, const std::string& source, int destRow, const CropRect& rect,
             const std::string& destinationDirectory = {},
             FormatTableView table = FormatTable());

}  // namespace pxm
