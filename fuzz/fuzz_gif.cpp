// GIF files through the GIF handlers: info, the block report and the reader (also of the second
// image, with several images allowed).
#include "config/settings.h"
#include "fuzz_support.h"

PXM_FUZZ_TARGET(gif, "gif") {
  pxm::fuzz::FuzzFormat(data, size, "GIF");
  pxm::ScopedSettings settings;
  settings->MultipleImageGIF = 1;
  pxm::fuzz::FuzzFormat(data, size, "GIF");
  return 0;
}
