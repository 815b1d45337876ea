#pragma once

#include <array>
#include <string_view>

namespace pxm {

// The extension of every row of the format table, in the table's fixed order; the last row is
// the spare one and has none. PXM.INI names each row's on/off switch by its extension, so the
// configuration needs this list and nothing of the codecs behind the rows. The format table
// checks when it is compiled that its rows carry these same extensions.
inline constexpr std::array<std::string_view, 42> kFormatExtensions = {
    "MAC", "IMG", "PCX", "GIF", "TIF", "WPG", "PIC", "TGA", "CUT", "BMP", "MSP",
    "LBM", "EXE", "TXT", "RLE", "JPG", "ART", "IFF", "RAS", "HRZ", "DIB", "ICO",
    "AVI", "CBD", "CPT", "FIT", "CDR", "BGA", "PNG", "MPG", "MOV", "FLI", "FLC",
    "PCD", "WMF", "CLP", "UUE", "JPE", "DLL", "VBX", "FTS", ""};

}  // namespace pxm
