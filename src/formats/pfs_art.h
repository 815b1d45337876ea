#pragma once

#include <string>

#include "core/image_info.h"

// PFS: First Publisher clip art, one bit a pixel: the common uncompressed kind, and the high
// resolution kind of PackBits rows on reading. Files are written uncompressed.
namespace pxm {

int ArtInfo(ImageInfo& info, const std::string& path, int purpose);
int ArtRead(ImageInfo& info, const std::string& path);
int ArtWrite(ImageInfo& info, const std::string& path);

}  // namespace pxm
