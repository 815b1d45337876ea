// Windows libraries, 16-bit and 32- or 64-bit, through the library row: the resource tables,
// icon groups, icons and bitmaps.
#include "fuzz_support.h"

PXM_FUZZ_TARGET(dll, "dll", "vbx") {
  pxm::fuzz::FuzzFormat(data, size, "DLL");
  return 0;
}
