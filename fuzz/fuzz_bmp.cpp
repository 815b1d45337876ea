// Bitmap files through the BMP/DIB handlers and the bitmap-array handlers.
#include "fuzz_support.h"

PXM_FUZZ_TARGET(bmp, "bmp", "dib", "bga") {
  pxm::fuzz::FuzzFormat(data, size, "BMP");
  pxm::fuzz::FuzzFormat(data, size, "BGA");
  return 0;
}
