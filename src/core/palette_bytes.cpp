#include "core/palette_bytes.h"

#include <algorithm>

namespace pxm {

void PaletteToBytes(const Palette& palette, ColourEntryLayout layout, std::span<uint8_t> out) {
  const size_t entries = std::min(out.size() / layout.bytes, palette.size());
  for (size_t i = 0; i < entries; ++i) {
    uint8_t* entry = out.data() + i * layout.bytes;
    entry[layout.red] = palette[i].red;
    entry[layout.green] = palette[i].green;
    entry[layout.blue] = palette[i].blue;
  }
}

void PaletteFromBytes(std::span<const uint8_t> in, ColourEntryLayout layout, Palette& palette) {
  const size_t entries = std::min(in.size() / layout.bytes, palette.size());
  for (size_t i = 0; i < entries; ++i) {
    const uint8_t* entry = in.data() + i * layout.bytes;
    palette[i] = Rgb{entry[layout.red], entry[layout.green], entry[layout.blue]};
  }
}

}  // namespace pxm
