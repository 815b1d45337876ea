#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "core/image_info.h"

// Colour tables as files store them: entries of three or four bytes, red, green and blue in
// either order.
namespace pxm {

struct ColourEntryLayout {
  uint8_t red;  // the byte of each component within an entry
  uint8_t green;
  uint8_t blue;
  uint8_t bytes;  // 3, or 4 with a fourth byte that is left as it is
};

inline constexpr ColourEntryLayout kRgbEntries{0, 1, 2, 3};
inline constexpr ColourEntryLayout kBgrEntries{2, 1, 0, 3};
inline constexpr ColourEntryLayout kRgbPaddedEntries{0, 1, 2, 4};
inline constexpr ColourEntryLayout kBgrPaddedEntries{2, 1, 0, 4};

// Writes the palette's first entries into `out`, as many as it has whole entries (at most 256).
void PaletteToBytes(const Palette& palette, ColourEntryLayout layout, std::span<uint8_t> out);

// Reads as many whole entries as `in` holds (at most 256) into the palette's first entries; the
// others keep their colours.
void PaletteFromBytes(std::span<const uint8_t> in, ColourEntryLayout layout, Palette& palette);

}  // namespace pxm
