#pragma once

#include <cstddef>
#include <cstdint>

// The 17-byte header of a PC Paint (Pictor) file; words are little-endian. The palette follows,
// then the number of data blocks (0: the data follows as it is).
namespace pxm::pictor {

enum HeaderOffset : size_t {
  kMagic = 0,  // 0x1234
  kWidth = 2,
  kHeight = 4,
  kXOffset = 6,  // where the picture sat on the screen
  kYOffset = 8,
  kPlaneInfo = 10,    // bits 0-3: bits per pixel in a plane; bits 4-7: planes less one
  kPaletteFlag = 11,  // 0xFF in files that carry the three fields below
  kVideoMode = 12,    // the program's letter for the screen mode
  kPaletteType = 13,
  kPaletteSize = 15,  // bytes of palette data
};
constexpr size_t kHeaderBytes = 17;
constexpr uint16_t kPicMagic = 0x1234;

enum PaletteType : uint16_t {
  kNoPalette = 0,
  kCgaPalette = 1,    // a CGA colour set number (0 to 5) and a border colour
  kPcjrPalette = 2,   // a CGA colour number per entry
  kEgaPalette = 3,    // an EGA colour number (0 to 63) per entry
  kVgaPalette = 4,    // six-bit red, green and blue per entry (256 entries)
  kVga16Palette = 5,  // the same for 16 entries
};

}  // namespace pxm::pictor
