// Text files through the TXT handlers, drawn as pictures.
#include "fuzz_support.h"

PXM_FUZZ_TARGET(txt, "txt") {
  pxm::fuzz::FuzzFormat(data, size, "TXT");
  return 0;
}
