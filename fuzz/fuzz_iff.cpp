// IFF files through the LBM/IFF handlers, the chunk report included.
#include "fuzz_support.h"

PXM_FUZZ_TARGET(iff, "iff", "lbm") {
  pxm::fuzz::FuzzFormat(data, size, "IFF");
  return 0;
}
