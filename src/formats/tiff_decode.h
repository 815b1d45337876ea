#pragma once

#include <string>

#include "core/file_io.h"
#include "core/image_info.h"
#include "formats/tiff_picture.h"

// The reading routes that go through libtiff: scanlines of CCITT, LZW and other compressions,
// JPEG turned into RGB, and the RGBA conversion for colour models the front end does not know.
namespace pxm {

// Delivers every row to info.putLine. Answers 0; 2 when libtiff sees another picture than the
// front end did; 3 for data that cannot be decoded; 4 when the sink stops; 8 for a compression
// or colour model libtiff cannot decode.
int ReadTiffThroughLibrary(ImageInfo& info, InputFile& file, const std::string& path,
                           const TiffPicture& picture);

}  // namespace pxm
