#pragma once

#include <cstdint>

#include "core/image_info.h"

// The colours of the PC display adapters that the DOS-era paint formats refer to by number.
namespace pxm {

// One of the 16 colours of the CGA text palette (black, blue, green, cyan, red, magenta, brown,
// light grey, and their bright versions), by number 0 to 15.
Rgb CgaColour(uint32_t number);

// One of the 64 colours of the EGA: bits 0 to 2 are blue, green and red at two thirds, bits 3 to 5
// the same at one third.
Rgb EgaColour(uint32_t number);

// A level of the VGA's six-bit colour registers as eight bits: the high bits repeated below, so
// that 63 is 255.
constexpr uint8_t VgaLevel(uint32_t six) {
  six &= 63;
  return static_cast<uint8_t>((six << 2) | (six >> 4));
}

// The 256 colours a VGA starts with in its 256-colour mode: the 16 CGA colours, 16 greys, nine
// colour wheels of 24 hues (three intensities by three saturations) and eight blacks, each level
// of six bits multiplied by 4.
Palette VgaDefaultPalette();

}  // namespace pxm
