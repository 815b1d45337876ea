#pragma once

#include <string>

#include "core/image_info.h"

// Dr. Halo pictures: a CUT file of run-length rows of one byte a pixel, with its colours in a
// PAL file of the same name beside it (a grey ramp when there is none). Writing makes both.
namespace pxm {

int CutInfo(ImageInfo& info, const std::string& path, int purpose);
int CutRead(ImageInfo& info, const std::string& path);
int CutWrite(ImageInfo& info, const std::string& path);

}  // namespace pxm
