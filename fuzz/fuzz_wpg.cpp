// WordPerfect Graphics files through the WPG handlers.
#include "fuzz_support.h"

PXM_FUZZ_TARGET(wpg, "wpg") {
  pxm::fuzz::FuzzFormat(data, size, "WPG");
  return 0;
}
