// PC Paintbrush files through the PCX handlers.
#include "fuzz_support.h"

PXM_FUZZ_TARGET(pcx, "pcx") {
  pxm::fuzz::FuzzFormat(data, size, "PCX");
  return 0;
}
