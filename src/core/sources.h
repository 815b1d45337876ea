#pragma once

#include <cstdint>

#include "core/image_info.h"
#include "core/image_store.h"

// The sources writers and processing steps pull rows from, all bound to the store.
namespace pxm {

// Reports progress, then the stored row with the abort check: the source Convert writes from.
LineSource ProgressRowSource(ImageStore& store, uint64_t total);
// The stored row, no abort check.
LineSource PlainRowSource(ImageStore& store);
// The stored row, then the abort check.
LineSource AbortableRowSource(ImageStore& store);
// Memory stores only: the row with 24-bit pixels turned from RGB to BGR; never aborts.
LineSource DibSource(ImageStore& store);
// Output pixel x of row r from stored row rowMap[r] at column columnMap[x]. The store holds one
// byte per pixel for 2..8-bit pictures; `outputBits` is the picture's own depth, and 2..4-bit
// output is packed two pixels per byte from the low nibbles.
LineSource ScalingSource(ImageStore& store, uint32_t outputBits);
// cropWidth pixels from column cropLeft of stored row cropTop + r.
LineSource CroppingSource(ImageStore& store);
// Memory stores only: the quarter turns. Destination pixel (x, r) is source pixel
// (column W - 1 - r, row x) for the anticlockwise turn and (column r, row D - 1 - x) for the
// clockwise one; destination rows are the store's depth wide.
LineSource ColumnSourceAnticlockwise(ImageStore& store);
LineSource ColumnSourceClockwise(ImageStore& store);
// Stored row depth - 1 - r with its pixels in reverse order (the half turn).
LineSource FlipSource(ImageStore& store);
// Stored row r with its pixels in reverse order.
LineSource MirrorSource(ImageStore& store);
// Stored row depth - 1 - r as it is.
LineSource UpsideDownSource(ImageStore& store);

}  // namespace pxm
