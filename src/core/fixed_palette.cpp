#include "core/fixed_palette.h"

namespace pxm {

const Palette& ThumbGetPalette(int /*which*/) {
  static const Palette palette = [] {
    Palette p{};
    for (int i = 0; i < 256; ++i)
      p[static_cast<size_t>(i)] = Rgb{static_cast<uint8_t>(((i >> 5) & 7) * 255 / 7),
                                      static_cast<uint8_t>(((i >> 2) & 7) * 255 / 7),
                                      static_cast<uint8_t>((i & 3) * 255 / 3)};
    return p;
  }();
  return palette;
}

}  // namespace pxm
