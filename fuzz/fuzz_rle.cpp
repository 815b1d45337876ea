// Run-length bitmaps through the RLE row (whose reader is the bitmap reader).
#include "fuzz_support.h"

PXM_FUZZ_TARGET(rle, "rle") {
  pxm::fuzz::FuzzFormat(data, size, "RLE");
  return 0;
}
