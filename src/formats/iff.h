#pragma once

#include <string>
#include <vector>

#include "core/image_info.h"

// Interchange File Format bitmaps: planar "ILBM" and chunky "PBM " forms, uncompressed or
// ByteRun1-coded, up to 8 planes with a colour map or 24 planes of red, green and blue. The LBM
// and IFF rows share these handlers.
namespace pxm {

int IffInfo(ImageInfo& info, const std::string& path, int purpose);
int IffRead(ImageInfo& info, const std::string& path);
int IffWrite(ImageInfo& info, const std::string& path);
// The chunk report: one line per chunk with its identifier and length, the form type, the
// fields of the bitmap header, the size of the colour map and the text of text chunks.
int IffList(ImageInfo& info, const std::string& path, std::vector<std::string>& lines);

}  // namespace pxm
