#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "core/image_info.h"

// Finding palette entries for colours: the nearest-colour search, the 4096-entry inverse colour
// map that replaces it per pixel, the orthogonal palette's arithmetic index, and the luminance
// sort. Used by colour reduction, the effects and the thumbnails.
namespace pxm {

// Index of the entry among the first `entries` of the palette nearest to the colour by squared
// Euclidean distance; the first of equally near entries wins.
int NearestColour(int red, int green, int blue, const Palette& palette, int entries);

// Sorts the first `entries` entries by luminance, darkest first; equal luminances keep their order.
void SortPaletteByLuminance(Palette& palette, int entries);

// A palette index for every colour at 4 bits per channel.
using InverseColourMap = std::array<uint8_t, 4096>;

// The map's cell of a colour: (red div 16) + (green div 16) × 16 + (blue div 16) × 256.
constexpr size_t InverseMapIndex(int red, int green, int blue) {
  return static_cast<size_t>((red >> 4) | ((green >> 4) << 4) | ((blue >> 4) << 8));
}

// Fills every cell with the nearest of the first `entries` entries to the cell's lower corner
// ((i mod 16) × 16, ((i div 16) mod 16) × 16, (i div 256) × 16).
void BuildInverseMap(InverseColourMap& map, const Palette& palette, int entries);

}  // namespace pxm
