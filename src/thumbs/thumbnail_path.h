#pragma once

#include <string>
#include <string_view>

namespace pxm {

// The thumbnail path of an image, one rule for reading and writing: the image's name with the
// extension ".THN", in the `ThumbnailPath` directory when one is set, else the bare name (the
// current directory). The name is upper case; directories keep their case.
std::string ThumbnailPathOf(std::string_view image);

// Where the thumbnail of an image is looked for and written: its thumbnail path, with a bare
// name put beside the image (the image's own directory) as long as the whole stays under 261
// characters.
std::string ThumbnailFileOf(std::string_view image);

// Whether the image has a thumbnail: its thumbnail file exists.
bool HasThumbnail(std::string_view image);

}  // namespace pxm
