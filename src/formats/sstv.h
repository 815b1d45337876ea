#pragma once

#include <string>

#include "core/image_info.h"

// Slow-scan television pictures (HRZ): 256 x 240 pixels of red, green and blue, six bits a
// sample in a byte each, with no header.
namespace pxm {

int HrzInfo(ImageInfo& info, const std::string& path, int purpose);
int HrzRead(ImageInfo& info, const std::string& path);
// Any depth; other sizes than 256 x 240 are refused (13).
int HrzWrite(ImageInfo& info, const std::string& path);

}  // namespace pxm
