#pragma once

#include <string>

#include "core/image_info.h"

// Sun raster files: 1-, 8-, 24- and 32-bit pictures, uncompressed or run-length coded on
// reading; uncompressed on writing.
namespace pxm {

int SunInfo(ImageInfo& info, const std::string& path, int purpose);
int SunRead(ImageInfo& info, const std::string& path);
int SunWrite(ImageInfo& info, const std::string& path);

}  // namespace pxm
