// Photo CD image packs through the PCD handlers. The pack's first byte is never looked at by the
// reader, so it chooses the size and kind (PhotoCDResolution) each input is read at.
#include "config/settings.h"
#include "fuzz_support.h"

PXM_FUZZ_TARGET(pcd, "pcd") {
  pxm::ScopedSettings settings;
  settings->PhotoCDResolution = size ? data[0] % 21 : 10;
  pxm::fuzz::FuzzFormat(data, size, "PCD");
  return 0;
}
