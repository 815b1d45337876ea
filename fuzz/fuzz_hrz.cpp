// SSTV pictures through the HRZ handlers.
#include "fuzz_support.h"

PXM_FUZZ_TARGET(hrz, "hrz") {
  pxm::fuzz::FuzzFormat(data, size, "HRZ");
  return 0;
}
