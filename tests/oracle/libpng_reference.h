#pragma once

#include <string>

#include "support/netpbm.h"

namespace pxm::oracle {

// The file as libpng decodes it, shown by Pixmill's rules: one byte a sample (16-bit samples by
// their high byte), no gamma, alpha or background; palette entries as they are, grey up to 8 bits
// (and grey with alpha) through Pixmill's grey ramp, 16-bit grey as it is. False when libpng
// refuses the file.
bool LibpngDecode(const std::string& path, test::RgbImage& out);

}  // namespace pxm::oracle
