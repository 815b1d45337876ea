#pragma once

#include <string>

#include "core/image_info.h"

// Targa files: colour-mapped, truecolour and black-and-white pictures, uncompressed or in
// run-length packets on reading; uncompressed on writing.
namespace pxm {

int TargaInfo(ImageInfo& info, const std::string& path, int purpose);
int TargaRead(ImageInfo& info, const std::string& path);
int TargaWrite(ImageInfo& info, const std::string& path);

}  // namespace pxm
