#pragma once

#include <string>

#include "core/image_info.h"

// WordPerfect Graphics files, versions 1 and 2: the first bitmap record is the picture, with the
// colour maps that come before it (the VGA's default colours without one). Written as a version 1
// file with one run-length bitmap of 1, 4 or 8 bits.
namespace pxm {

int WpgInfo(ImageInfo& info, const std::string& path, int purpose);
int WpgRead(ImageInfo& info, const std::string& path);
int WpgWrite(ImageInfo& info, const std::string& path);

}  // namespace pxm
