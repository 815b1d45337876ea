// PFS clip art, both kinds, through the ART handlers.
#include "fuzz_support.h"

PXM_FUZZ_TARGET(art, "art") {
  pxm::fuzz::FuzzFormat(data, size, "ART");
  return 0;
}
