#pragma once

#include <string>

#include "core/image_info.h"

// Microsoft Paint pictures, one bit a pixel: version 1 with raw rows, version 2 with a map of
// row lengths and run-length rows. Files are written as version 2.
namespace pxm {

int MspInfo(ImageInfo& info, const std::string& path, int purpose);
int MspRead(ImageInfo& info, const std::string& path);
int MspWrite(ImageInfo& info, const std::string& path);

}  // namespace pxm
