// GEM bit images, plane and true-colour files, through the IMG handlers.
#include "fuzz_support.h"

PXM_FUZZ_TARGET(img, "img") {
  pxm::fuzz::FuzzFormat(data, size, "IMG");
  return 0;
}
