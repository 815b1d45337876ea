#pragma once

#include <cstdint>

#include "config/settings.h"
#include "core/image_info.h"
#include "core/image_store.h"
#include "core/scripted_host.h"
#include "support/picture.h"

namespace pxm::test {

// A picture held in a store with the record's row callbacks bound to it, as the batch drivers
// hand pictures to the processing engines.
class HeldPicture {
 public:
  // Stores `p` row by row in a store of its own packing; the record says `recordBits` (a palette
  // picture may be held one byte per pixel while its record says 2 to 8 bits).
  HeldPicture(const Picture& p, uint32_t recordBits, bool spill = false);
  HeldPicture(const HeldPicture&) = delete;
  HeldPicture& operator=(const HeldPicture&) = delete;

  // The stored rows read back in the packing of the record's bits now, with its palette.
  Picture Result();

  ScopedSettings settings;
  ScriptedHost host;
  ImageStore store{host};
  ImageInfo info;
};

// A picture of `width` × rows.size() from pixel values (indexes, or 0xRRGGBB when bits is 24).
Picture FromPixels(uint32_t width, uint32_t bits, const std::vector<std::vector<uint32_t>>& rows);
// The pixel values of a picture, row by row.
std::vector<std::vector<uint32_t>> PixelsOf(const Picture& p);

}  // namespace pxm::test
