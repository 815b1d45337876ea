// Icons and cursors (the same layout) through the icon row, PNG images inside them included.
#include "fuzz_support.h"

PXM_FUZZ_TARGET(ico, "ico", "cur") {
  pxm::fuzz::FuzzFormat(data, size, "ICO");
  return 0;
}
