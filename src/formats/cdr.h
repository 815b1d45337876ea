#pragma once

#include <string>
#include <vector>

#include "core/image_info.h"

// Corel Draw files (RIFF form "CDR" and a version letter): the preview bitmap the program stores
// in its "DISP" chunk is the picture, the file's one image. Not written. With the setting
// ReadCDRBitmaps off the preview is not read: every handler answers "Disabled feature".
namespace pxm {

int CdrInfo(ImageInfo& info, const std::string& path, int purpose);
int CdrRead(ImageInfo& info, const std::string& path);
// The one name, "Preview (120 x 90, 8 bits)"; imageCount becomes 1.
int CdrList(ImageInfo& info, const std::string& path, std::vector<std::string>& names);

}  // namespace pxm
