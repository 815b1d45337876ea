// MacPaint pictures, with or without a MacBinary header, through the MAC handlers.
#include "fuzz_support.h"

PXM_FUZZ_TARGET(mac, "mac") {
  pxm::fuzz::FuzzFormat(data, size, "MAC");
  return 0;
}
