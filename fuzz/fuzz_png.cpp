// PNG files through the PNG handlers: the chunk walk of info, the chunk report (with its CRC
// lines) and the libpng reader.
#include "config/settings.h"
#include "fuzz_support.h"

PXM_FUZZ_TARGET(png, "png") {
  pxm::ScopedSettings settings;
  settings->PngDetailCrc = 1;
  pxm::fuzz::FuzzFormat(data, size, "PNG");
  return 0;
}
