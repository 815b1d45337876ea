#pragma once

#include <cstdint>
#include <string>

#include "core/file_io.h"
#include "core/image_info.h"
#include "formats/dib.h"

// One image of an icon: a device-independent bitmap with its mask, or a whole PNG file. Icon
// files hold several of them behind a directory; Windows libraries hold them as resources.
namespace pxm {

struct IconImage {
  uint64_t offset = 0;
  bool png = false;
  uint32_t width = 0;
  uint32_t height = 0;
  uint32_t fileBits = 0;  // bits a pixel as stored: the bitmap's count, or PNG depth × channels
  DibLayout dib;          // the bitmap's layout when not PNG
};

// Reads the header of the image at `offset` (for PNG images the first chunk alone). Answers 0,
// 2 for a header that describes no picture or one that the file could not hold, or 8 for a
// layout not read here.
int DescribeIconImage(InputFile& in, uint64_t offset, IconImage& out);

// Fills the record's size, bits, palette and unpacked size for the image (a PNG image's colour
// table comes from its chunks). Leaves the description alone. Answers an error code.
int IconRecord(ImageInfo& info, InputFile& in, const IconImage& image);

// Delivers the image's rows to info.putLine; the mask is not part of the picture.
int ReadIconImage(ImageInfo& info, InputFile& in, const IconImage& image);

// "16 x 16, 8 bits": the size and stored depth of an image, for lists of images.
std::string ImageSizeText(uint32_t width, uint32_t height, uint32_t bits);

}  // namespace pxm
