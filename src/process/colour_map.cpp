#include "process/colour_map.h"

#include <algorithm>
#include <utility>

#include "core/row_format.h"

namespace pxm {

int NearestColour(int red, int green, int blue, const Palette& palette, int entries) {
  // Above any distance in the RGB cube (3 × 255² = 195075), so an entry is always found.
  int best = 1000000;
  int index = 0;
  for (int i = 0; i < entries && i < 256; ++i) {
    const Rgb& c = palette[static_cast<size_t>(i)];
    const int dr = red - c.red, dg = green - c.green, db = blue - c.blue;
    const int distance = dr * dr + dg * dg + db * db;
    if (distance < best) {
      best = distance;
      index = i;
      if (distance == 0) break;
    }
  }
  return index;
}

void SortPaletteByLuminance(Palette& palette, int entries) {
  // Adjacent swaps only while a neighbour is strictly darker: equal colours keep their order.
  auto lum = [](const Rgb& c) { return Luminance(c.red, c.green, c.blue); };
  for (int end = std::min(entries, 256); end > 1; --end) {
    bool swapped = false;
    for (int i = 1; i < end; ++i) {
      Rgb& a = palette[static_cast<size_t>(i - 1)];
      Rgb& b = palette[static_cast<size_t>(i)];
      if (lum(b) < lum(a)) {
        std::swap(a, b);
        swapped = true;
      }
    }
    if (!swapped) break;
  }
}

void BuildInverseMap(InverseColourMap& map, const Palette& palette, int entries) {
  for (size_t i = 0; i < map.size(); ++i) {
    const int red = static_cast<int>(i % 16) * 16;
    const int green = static_cast<int>((i / 16) % 16) * 16;
    const int blue = static_cast<int>(i / 256) * 16;
    map[i] = static_cast<uint8_t>(NearestColour(red, green, blue, palette, entries));
  }
}

}  // namespace pxm
