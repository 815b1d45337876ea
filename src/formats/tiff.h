#pragma once

#include <string>
#include <vector>

#include "core/image_info.h"

// TIFF files. The front end reads the header and first directory itself, and the strips of
// uncompressed and PackBits pictures; libtiff decodes the other compressions and writes files.
namespace pxm {

int TiffInfo(ImageInfo& info, const std::string& path, int purpose);
int TiffRead(ImageInfo& info, const std::string& path);
// Compression by TiffOptions and the picture's depth; grey or colour map by CreateTifColour.
int TiffWrite(ImageInfo& info, const std::string& path);
// The tag listing of the first directory, one line per entry after the byte-order line.
int TiffList(ImageInfo& info, const std::string& path, std::vector<std::string>& lines);

}  // namespace pxm
