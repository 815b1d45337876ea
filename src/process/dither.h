#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "core/image_info.h"

// The monochrome engine: any picture of 1 to 8 bits with a palette (held one byte per pixel) or
// of 24 bits becomes a 1-bit black-and-white picture, by Bayer ordered dither, one of three
// error-diffusion kernels, or a fixed threshold.
namespace pxm {

// Bits of the DitherMode word. Exactly one method bit is meant to be set; with Threshold the low
// byte holds the level and nothing else is set.
enum DitherModeBit : uint32_t {
  kDitherBayer = 1,
  kDitherFloyd = 2,
  kDitherBurkes = 4,
  kDitherStucki = 8,
  kDitherUnidirectional = 16,
  kDitherBidirectional = 32,
  kDitherSize1 = 64,
  kDitherSize2 = 128,
  kDitherSize3 = 0x100,
  kDitherSize4 = 0x200,
  kDitherSize5 = 0x400,
  kDitherThreshold = 0x800,
};
inline constexpr uint32_t kDitherLevelMask = 0xFF;

// The halftone size factor 1 to 5 a mode asks for: always 1 for Threshold and Bayer.
int HalftoneSizeFactor(uint32_t mode);

// Turns the picture held behind image.getLine / image.putLine into 1 bit per pixel, with contrast
// and brightness from the settings. `name` fills the status texts. Answers 0; 4 when the user
// stops it or a row callback fails (the store is then half converted); 6 when its row buffers
// cannot be had (the store untouched). On success bits is 1 and the palette starts black, white.
int DitherImage(ImageInfo& image, uint32_t mode, std::string_view name);

}  // namespace pxm
