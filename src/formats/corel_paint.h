#pragma once

#include <string>

#include "core/image_info.h"

// Corel PHOTO-PAINT pictures. Files of PHOTO-PAINT 6 and before are TIFF files under another
// name: they are described and read by the TIFF code. Files of version 7 and later ("CPT7FILE",
// "CPT8FILE", "CPT9FILE") keep their layers in compressed tiles whose coding has no public
// description: their size and depth are told from the header and the first block, and reading
// them answers 5 ("Unsupported function"). Nothing is written as PHOTO-PAINT: a file the program
// itself would open cannot be vouched for.
namespace pxm {

int CptInfo(ImageInfo& info, const std::string& path, int purpose);
int CptRead(ImageInfo& info, const std::string& path);

}  // namespace pxm
