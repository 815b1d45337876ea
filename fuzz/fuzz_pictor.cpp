// PC Paint (Pictor) pictures through the PIC handlers.
#include "fuzz_support.h"

PXM_FUZZ_TARGET(pictor, "pic") {
  pxm::fuzz::FuzzFormat(data, size, "PIC");
  return 0;
}
