#pragma once

#include <string>

#include "core/image_info.h"

// PC Paintbrush files: 1-bit, planar 2-4-bit, 8-bit with a 256-colour trailer, and 24-bit as
// three 8-bit planes.
namespace pxm {

int PcxInfo(ImageInfo& info, const std::string& path, int purpose);
int PcxRead(ImageInfo& info, const std::string& path);
int PcxWrite(ImageInfo& info, const std::string& path);

// The palette of files that carry none (version 3): the sixteen colours of the old colour
// adapters, with 170,170,0 where those showed brown.
const Palette& PcxDefaultPalette();

}  // namespace pxm
