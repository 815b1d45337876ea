#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/file_io.h"
#include "core/image_info.h"

// The palette file of a Dr. Halo picture: the picture's name with the extension PAL, beside it.
namespace pxm {

// The palette file beside a picture: the picture's name with the extension PAL in any case (a
// name that differs from the picture's only in case is taken too, since such files come from
// systems that ignored case). None when there is no such file.
std::optional<std::string> FindHaloPalette(const std::string& picturePath);

// The name a picture's palette file is written under: the one already there, or the picture's
// name with "pal" in the case of the picture's own extension.
std::string HaloPaletteNameFor(const std::string& picturePath);

// Reads the entries of a palette file into `palette`, scaled from the file's largest level to
// 255. False (and `palette` untouched) when the file is not a Dr. Halo palette.
bool ReadHaloPalette(const std::string& path, Palette& palette);

// Writes a palette file of `entries` entries, levels up to 255.
bool WriteHaloPalette(OutputFile& out, const Palette& palette, uint32_t entries);

}  // namespace pxm
