#pragma once

#include <cstdint>

#include "core/image_info.h"

namespace pxm {

// Chooses a palette of at most `count` colours for a 24-bit picture of width × depth pixels whose
// rows (red, green, blue per pixel) `getLine` delivers, called once for each row 0 to depth - 1.
// A picture with fewer distinct colours keeps them, in the order first seen; otherwise median cut
// over a 4096-cell histogram (4 bits per channel) makes the palette and unused entries up to
// `count` are black. `count` is in-out: colours wanted (1 to 256), colours made. Answers 0, 4 when
// getLine answers non-zero, or 6.
int QuantizeImage(uint32_t width, int32_t depth, int& count, Palette& palette,
                  const LineSource& getLine);

}  // namespace pxm
