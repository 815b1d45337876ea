#pragma once

#include <string>

#include "core/image_info.h"

// Run-length coded Windows bitmaps: read by the bitmap reader (which reads their runs), written
// with 8-bit runs for pictures of 5 to 8 bits and 4-bit runs for pictures of 1 to 4 bits.
namespace pxm {

int RleInfo(ImageInfo& info, const std::string& path, int purpose);
int RleRead(ImageInfo& info, const std::string& path);
int RleWrite(ImageInfo& info, const std::string& path);

}  // namespace pxm
