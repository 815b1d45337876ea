#pragma once

#include <string>

#include "core/image_info.h"

// Photo CD image packs: the three pictures stored without compression (Base/16, Base/4, Base)
// and a Base/64 halved from Base/16, turned as the pack says, as RGB, as 256 colours (median cut
// and diffusion by the colour reduction of the effects) or as 256 greys, chosen by
// PhotoCDResolution. The larger pictures (4Base and up, kept as coded differences) are refused
// with 5; nothing is ever written as Photo CD.
namespace pxm {

int PcdInfo(ImageInfo& info, const std::string& path, int purpose);
int PcdRead(ImageInfo& info, const std::string& path);

// PhotoYCC to RGB for display, as the format defines it: luma 1.3584 × L, chroma
// 2.2179 × (C1 − 156) and 1.8215 × (C2 − 137); red L + C2, green L − 0.194 C1 − 0.509 C2,
// blue L + C1, each rounded and held within 0..255.
Rgb PhotoYccToRgb(uint8_t luma, uint8_t chroma1, uint8_t chroma2);

}  // namespace pxm
