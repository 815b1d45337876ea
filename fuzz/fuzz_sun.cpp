// Sun raster files through the RAS handlers.
#include "fuzz_support.h"

PXM_FUZZ_TARGET(sun, "ras") {
  pxm::fuzz::FuzzFormat(data, size, "RAS");
  return 0;
}
