// Microsoft Paint pictures of both versions through the MSP handlers.
#include "fuzz_support.h"

PXM_FUZZ_TARGET(msp, "msp") {
  pxm::fuzz::FuzzFormat(data, size, "MSP");
  return 0;
}
