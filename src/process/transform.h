#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "core/image_info.h"
#include "core/image_store.h"

// Rotations by quarter turns and flips: which stored pixel each destination pixel is.
namespace pxm {

// The Transform dialog's choices, numbered as its buttons (TransformMode holds one).
enum TransformModeId : int32_t {
  kRotate90 = 101,   // a quarter turn anticlockwise
  kRotate180 = 102,
  kRotate270 = 103,  // a quarter turn clockwise
  kFlipHorizontal = 104,
  kFlipVertical = 105,
};

bool IsTransformMode(int32_t mode);
// The quarter turns read one pixel from every stored row for each destination row, which only
// a store in memory can serve.
bool IsQuarterTurn(int32_t mode);

// The mode a command-line word names ("rotate90", "flip-h", ...) or a number 101..105 names.
std::optional<int32_t> ParseTransformMode(std::string_view word);

// The source that builds destination row r of `mode` from the store: the column sources for
// the quarter turns, the flip (half turn), mirror (horizontal flip) and upside-down sources.
LineSource TransformSource(ImageStore& store, int32_t mode);

// The destination's width and depth for `mode`: swapped by the quarter turns.
void TransformedSize(int32_t mode, uint32_t& width, int32_t& depth);

}  // namespace pxm
