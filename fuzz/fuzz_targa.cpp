// Targa files through the TGA handlers.
#include "fuzz_support.h"

PXM_FUZZ_TARGET(targa, "tga") {
  pxm::fuzz::FuzzFormat(data, size, "TGA");
  return 0;
}
