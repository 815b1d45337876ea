#pragma once

#include <string>

#include "core/image_info.h"

// OS/2 bitmap arrays: a chain of bitmaps in one file, each behind a 40-byte entry.
namespace pxm {

int BgaInfo(ImageInfo& info, const std::string& path, int purpose);
int BgaRead(ImageInfo& info, const std::string& path);
int BgaWrite(ImageInfo& info, const std::string& path);

}  // namespace pxm
