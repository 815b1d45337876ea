// TIFF files through the TIF row: the directory walk of info and of the tag listing (both
// forms), then the strips, whether the front end or libtiff decodes them.
#include "fuzz_support.h"

#include "config/settings.h"

PXM_FUZZ_TARGET(tiff, "tif", "tiff") {
  pxm::ScopedSettings settings;
  pxm::fuzz::FuzzFormat(data, size, "TIF");
  settings->TiffAlternateDetails = 1;
  pxm::fuzz::FuzzFormat(data, size, "TIF");
  return 0;
}
