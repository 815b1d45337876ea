#pragma once

#include <cstdint>

namespace pxm {

// The 8 × 8 ordered-dither matrix, values 0 to 63. The first index is the pixel's column modulo 8,
// the second its row modulo 8: neighbouring values sit far apart in both directions, so any
// threshold level lights an evenly spread set of cells.
inline constexpr uint8_t kBayerMatrix[8][8] = {
    {0, 32, 8, 40, 2, 34, 10, 42},   {48, 16, 56, 24, 50, 18, 58, 26},
    {12, 44, 4, 36, 14, 46, 6, 38},  {60, 28, 52, 20, 62, 30, 54, 22},
    {3, 35, 11, 43, 1, 33, 9, 41},   {51, 19, 59, 27, 49, 17, 57, 25},
    {15, 47, 7, 39, 13, 45, 5, 37},  {63, 31, 55, 23, 61, 29, 53, 21},
};

}  // namespace pxm
