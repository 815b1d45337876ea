#pragma once

#include <cstdint>

#include "core/file_io.h"
#include "core/image_info.h"

// The GIF codec library: LZW coding of GIF image data.
namespace pxm {

// Image flags bit: rows are stored in the four interlaced passes.
constexpr uint32_t kGifInterlaced = 0x40;

// Decodes one image whose data sub-blocks start at the file's position: `depth` rows of `width`
// pixels, handed to `sink` packed as the program's rows of `bits` (1 to 8), in the file's row
// order (interlaced when the flags say so). Answers 0, 4 when the sink asked to stop, or 3 for
// bad data: a code size out of range, a code the table does not hold, or data that ends before
// the last pixel (the rows decoded until then, the last one padded with 0, are delivered first).
// Anything after the last pixel, the end code included, is not looked at.
int GifUnpackImage(InputFile& file, int codeSize, uint32_t width, int32_t depth, uint32_t bits,
                   uint32_t imageFlags, const LineSink& sink);

// Writes the minimum code size (bits, at least 2), the data sub-blocks and the terminator of an
// image whose rows, packed as the program's rows of `bits` (1 to 8), come from `source`, asked
// for in interlaced order when `interlaced`. Pixel values are taken modulo 2^bits. Answers 0,
// 4 when the source asked to stop, or 11 when a write failed.
int GifCompressImage(OutputFile& file, uint32_t width, int32_t depth, uint32_t bits,
                     bool interlaced, const LineSource& source);

// Row numbers in the order a GIF stores them: top to bottom, or the interlaced passes (every
// 8th row from 0, every 8th from 4, every 4th from 2, every 2nd from 1).
class GifRowOrder {
 public:
  GifRowOrder(bool interlaced, int32_t depth) : interlaced_(interlaced), depth_(depth) {}
  // The next row, or -1 after the last.
  int32_t Next();

 private:
  bool interlaced_;
  int32_t depth_;
  int pass_ = 0;
  int64_t row_ = 0;
};

}  // namespace pxm
