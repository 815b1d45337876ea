// Corel PHOTO-PAINT files through the CPT handlers: TIFF files of version 6 and the headers of
// later versions.
#include "fuzz_support.h"

PXM_FUZZ_TARGET(cpt, "cpt") {
  pxm::fuzz::FuzzFormat(data, size, "CPT");
  return 0;
}
