#pragma once

#include <string>

#include "core/image_info.h"

// Windows icon and cursor files: a directory of images of several sizes and depths. The picture
// read is the image with the most pixels (the deepest of those); the writer makes an icon of
// one image.
namespace pxm {

int IcoInfo(ImageInfo& info, const std::string& path, int purpose);
int IcoRead(ImageInfo& info, const std::string& path);
int IcoWrite(ImageInfo& info, const std::string& path);

}  // namespace pxm
