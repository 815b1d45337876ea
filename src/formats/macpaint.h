#pragma once

#include <string>

#include "core/image_info.h"

// MacPaint pictures: one page of 576 x 720 pixels at one bit, rows of PackBits, behind a
// 512-byte header and, in files copied from a Macintosh, a MacBinary header.
namespace pxm {

int MacInfo(ImageInfo& info, const std::string& path, int purpose);
int MacRead(ImageInfo& info, const std::string& path);
// Pictures up to the page's size go on the page at its top left, the rest of it white; larger
// ones are refused (13). CreateMacbinaryHeader puts a MacBinary II header in front.
int MacWrite(ImageInfo& info, const std::string& path);

}  // namespace pxm
