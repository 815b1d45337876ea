// Uuencoded files through the UUE handlers, and the decoded file through its own format's.
#include "fuzz_support.h"

PXM_FUZZ_TARGET(uue, "uue") {
  pxm::fuzz::FuzzFormat(data, size, "UUE");
  return 0;
}
