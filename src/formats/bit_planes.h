#pragma once

#include <cstddef>
#include <cstdint>

// Planar rows (IFF "ILBM"): plane p holds bit p of every pixel, eight pixels a byte with the
// leftmost in bit 7, each plane `planeBytes` = (width + 7) / 8 bytes long, plane 0 first.
namespace pxm {

// Planes to pixel values. The source holds `planes` planes (for RGB, 24); the destination
// takes width values rounded up to a multiple of 8.
// One byte per pixel from planes 0..planes-1 (at most 8).
void PlanesToBytes(const uint8_t* line, size_t planeBytes, uint32_t planes, uint32_t width,
                   uint8_t* out);
// The store's 4-bit packing, two pixels a byte, first in the high nibble.
void PlanesToNibbles(const uint8_t* line, size_t planeBytes, uint32_t planes, uint32_t width,
                     uint8_t* out);
// Red, green and blue bytes from planes 0-7, 8-15 and 16-23.
void PlanesToRgb(const uint8_t* line, size_t planeBytes, uint32_t width, uint8_t* out);

// Pixel values to a planar line: `planes` planes (at most 8) of `values`, a byte per pixel.
void BytesToPlanes(const uint8_t* values, uint32_t width, uint32_t planes, size_t planeBytes,
                   uint8_t* line);
// RGB triples to 24 planes: 0-7 from red, 8-15 from green, 16-23 from blue.
void RgbToPlanes(const uint8_t* rgb, uint32_t width, size_t planeBytes, uint8_t* line);

}  // namespace pxm
