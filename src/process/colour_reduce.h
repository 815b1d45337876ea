#pragma once

#include <cstdint>
#include <string_view>

#include "core/image_info.h"

namespace pxm {

// The colour-reduction branch of the effects engine. The picture behind image.getLine holds RGB
// rows; the effects word's palette choice picks the palette (a fixed table, the orthogonal
// palette, or median cut from the picture) and its method maps every pixel to an index, by the
// nearest colour or with error diffusion. The rows are written back as indexes (two per byte
// below 5 bits) and the record takes the new depth and palette. Answers 0, 4 (cancelled or a
// failed row callback), 5 (a palette choice outside 1 to 11) or 6.
int ReduceColours(ImageInfo& image, uint32_t effects, std::string_view name);

}  // namespace pxm
