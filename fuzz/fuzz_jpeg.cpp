// JPEG files through the handlers of the JPG row (the JPE row shares them), in both reading
// modes: quantized to 256 colours and full RGB.
#include "fuzz_support.h"

#include "config/settings.h"

PXM_FUZZ_TARGET(jpeg, "jpg", "jpe", "jpeg") {
  pxm::ScopedSettings settings;
  pxm::fuzz::FuzzFormat(data, size, "JPG");
  settings->ReadJpegRgb = 1;
  pxm::fuzz::FuzzFormat(data, size, "JPG");
  return 0;
}
