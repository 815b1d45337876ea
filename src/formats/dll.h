#pragma once

#include <string>
#include <vector>

#include "core/image_info.h"

// The icons and bitmaps inside Windows libraries (DLL and VBX files, 16-bit and 32- or 64-bit):
// each icon image and each bitmap is one picture of the file. Not written.
namespace pxm {

int DllInfo(ImageInfo& info, const std::string& path, int purpose);
int DllRead(ImageInfo& info, const std::string& path);
// One name per picture, "Icon 3 (32 x 32, 8 bits)" or "Bitmap 2 (64 x 48, 4 bits)", at most
// 128 of them; imageCount becomes the number of pictures.
int DllList(ImageInfo& info, const std::string& path, std::vector<std::string>& names);

}  // namespace pxm
