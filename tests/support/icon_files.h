#pragma once

// Icons, icon groups and the Windows libraries that hold them, built byte for byte for tests.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "core/image_info.h"

namespace pxm::test {

// A pixel's value at (x, y): a palette index, or 0xRRGGBB for 16 bits and deeper.
using PixelFunction = std::function<uint32_t(uint32_t x, int32_t y)>;

// Colour-table entry i of the bitmaps below.
Rgb IconPaletteEntry(uint32_t i);

// A device-independent bitmap without a file header: the 40-byte header, a full colour table
// (entries from IconPaletteEntry) for 8 bits and less, rows bottom first padded to 32 bits.
// 16-bit pixels are five bits a channel, 32-bit ones carry an alpha byte. An icon's header counts
// twice the rows, and a mask follows with every pixel transparent (the reader ignores it).
std::string DibBytes(uint32_t width, int32_t height, uint32_t bits, const PixelFunction& pixel,
                     bool icon);
inline std::string IconBitmap(uint32_t width, int32_t height, uint32_t bits,
                              const PixelFunction& pixel) {
  return DibBytes(width, height, bits, pixel, true);
}

// An icon (type 1) or cursor (type 2) file of the given images. The directory's sizes are left
// 0, as they are for 256-pixel images: readers must look at the images themselves.
std::string IconFile(uint32_t type, const std::vector<std::string>& images);

// A resource of a library: its type (2 bitmap, 3 icon, 14 icon group), number and data.
struct LibraryResource {
  uint32_t type;
  uint32_t id;
  std::string data;
};

// An icon group naming icon resources by number, with each one's size, depth and length taken
// from the icon resource of that number among `resources`.
std::string IconGroup(const std::vector<uint32_t>& iconIds,
                      const std::vector<LibraryResource>& resources);

// A 32-bit (or, with `pe64`, 64-bit) library of one resource section, and a 16-bit library;
// resources of one type keep their order.
std::string PeLibrary(const std::vector<LibraryResource>& resources, bool pe64);
std::string NeLibrary(const std::vector<LibraryResource>& resources);

}  // namespace pxm::test
