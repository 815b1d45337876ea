#pragma once

#include <string>

#include "core/image_info.h"

// PC Paint (Pictor) pictures: the 0x1234 header, one to four bit planes of 1, 2, 4 or 8 bits,
// CGA, PCjr, EGA and VGA palettes, data kept as it is or in run-length blocks, rows bottom first.
// Written as one bit, four EGA planes or eight bits with a VGA palette.
namespace pxm {

int PicInfo(ImageInfo& info, const std::string& path, int purpose);
int PicRead(ImageInfo& info, const std::string& path);
int PicWrite(ImageInfo& info, const std::string& path);

}  // namespace pxm
