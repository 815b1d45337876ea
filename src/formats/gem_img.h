#pragma once

#include <string>

#include "core/image_info.h"

// GEM bit images (GEM Paint, Ventura): 1 to 8 bit planes and true colour (24 planes, packed
// red, green, blue), run-coded, with the palette of the XIMG extension when there is one.
// Written at 1, 4 and 8 planes (the last two with an XIMG palette) and as true colour.
namespace pxm {

int GemInfo(ImageInfo& info, const std::string& path, int purpose);
int GemRead(ImageInfo& info, const std::string& path);
int GemWrite(ImageInfo& info, const std::string& path);

// The palette of 2- to 4-plane files without one: GEM's sixteen standard colours by pixel
// value, white first and black last.
const Palette& GemStandardPalette();

}  // namespace pxm
