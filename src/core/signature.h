#pragma once

#include <string_view>

namespace pxm {

// The program's signature: the configuration file's header, IFF annotation chunks and the FITS
// ORIGIN card carry it, so a file can be traced to the program that wrote it.
inline constexpr std::string_view kFileSignature = "PXM/Windows 0.00";

}  // namespace pxm
