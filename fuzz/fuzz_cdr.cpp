// Corel Draw files through the preview row: the RIFF chunks and the preview bitmap.
#include "fuzz_support.h"

PXM_FUZZ_TARGET(cdr, "cdr") {
  pxm::fuzz::FuzzFormat(data, size, "CDR");
  return 0;
}
