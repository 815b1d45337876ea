// Dr. Halo pictures through the CUT handlers.
#include "fuzz_support.h"

PXM_FUZZ_TARGET(cut, "cut") {
  pxm::fuzz::FuzzFormat(data, size, "CUT");
  return 0;
}
