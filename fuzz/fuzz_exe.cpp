// Self-displaying programs through the EXE handlers, which hand the picture after the program to
// the PCX, GIF or BMP code.
#include "fuzz_support.h"

PXM_FUZZ_TARGET(exe, "exe") {
  pxm::fuzz::FuzzFormat(data, size, "EXE");
  return 0;
}
