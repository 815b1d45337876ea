#pragma once

#include <cstdint>

#include "core/file_io.h"
#include "core/image_info.h"

// Device-independent bitmaps kept without a file header inside other files: the images of icons
// (twice as tall, a transparency mask under the picture), the bitmaps of Windows libraries and
// the previews of Corel Draw files.
namespace pxm {

enum class DibKind {
  kBitmap,  // rows as the header says, top-down when the height is negative
  kIcon,    // the height counts the mask too: the picture is its upper half
};

struct DibLayout {
  uint32_t width = 0;
  uint32_t height = 0;  // rows of the picture, an icon's mask not counted
  bool topDown = false;
  uint32_t fileBits = 0;     // 1, 4, 8, 16, 24 or 32
  uint32_t compression = 0;  // 0 none, 1 8-bit runs, 2 4-bit runs
  uint64_t rows = 0;         // where the first stored row starts
  uint32_t bits = 0;         // the picture's bits: 1, 4, 8 or 24
  Palette palette{};
};

// Reads the header and the colour table at `offset`. Answers 0; 2 when the header describes no
// picture, or one that the rest of the file could not hold; 8 for layouts not read here (bit
// fields, embedded JPEG or PNG pictures, depths other than 1, 4, 8, 16, 24 and 32).
int ParseDib(InputFile& in, uint64_t offset, DibKind kind, DibLayout& out);

// Puts the layout's size, bits, palette and unpacked size into the record.
void DescribeDib(ImageInfo& info, const DibLayout& dib);

// Delivers every row to info.putLine (row 0 = top). Answers 0; 2 when the record was not made
// from this layout; 3 for data that ends early; 4 when the sink stops it; 6 without memory.
// Run-length data that ends with its end mark leaves the rows after it as the store holds them.
int ReadDibRows(ImageInfo& info, InputFile& in, const DibLayout& dib);

}  // namespace pxm
