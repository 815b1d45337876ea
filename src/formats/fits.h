#pragma once

#include <string>
#include <vector>

#include "core/image_info.h"

// FITS files: the first image of the primary header read as a grey picture, and any picture
// written as 8-bit grey. The FIT and FTS rows share these handlers.
namespace pxm {

int FitsInfo(ImageInfo& info, const std::string& path, int purpose);
int FitsRead(ImageInfo& info, const std::string& path);
int FitsWrite(ImageInfo& info, const std::string& path);
// The card report: one "KEYWORD = value" line per header card before END.
int FitsList(ImageInfo& info, const std::string& path, std::vector<std::string>& lines);

}  // namespace pxm
