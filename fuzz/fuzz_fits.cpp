// FITS files through the FIT/FTS handlers, the card report included.
#include "fuzz_support.h"

PXM_FUZZ_TARGET(fits, "fit", "fts", "fits") {
  pxm::fuzz::FuzzFormat(data, size, "FIT");
  return 0;
}
