#pragma once

#include <string>

#include "core/image_info.h"

// Pictures kept uuencoded in text files, also split over several files: the embedded file is
// decoded into the private temporary directory and handed to the handlers of its own format.
// Nothing is ever written as UUE: the row's writer only refuses.
namespace pxm {

int UueInfo(ImageInfo& info, const std::string& path, int purpose);
int UueRead(ImageInfo& info, const std::string& path);

}  // namespace pxm
