#pragma once

#include <array>
#include <cstdint>

#include "core/image_info.h"
#include "core/image_store.h"
#include "core/levels.h"

// The sinks readers deliver rows to. Each is bound to the store; `total` is the picture depth the
// progress bar counts against. Every sink but the plain and quiet ones reports progress.
namespace pxm {

// Stores the row as it is, with progress: the sink Convert reads into.
LineSink ProgressRowSink(ImageStore& store, uint64_t total);
// Stores the row as it is.
LineSink PlainRowSink(ImageStore& store);
// Stores the row without the abort check.
LineSink QuietRowSink(ImageStore& store);
// BGR rows to RGB; when sourceBits > 1 and viewGamma is not 100 every byte then goes through
// the gamma table.
LineSink SwappedRgbSink(ImageStore& store, uint64_t total, uint32_t sourceBits, int viewGamma);
// Rows of `sourceBits` packing into a store of one byte per pixel (1-bit rows stay packed).
LineSink BytePerPixelSink(ImageStore& store, uint64_t total, uint32_t sourceBits);
// Rows of `sourceBits` packing into a 24-bit store through the palette.
LineSink ExpandToRgbSink(ImageStore& store, uint64_t total, uint32_t sourceBits,
                         const Palette& palette);
// Each pixel repeated store.zoom times across and each row zoom times down; the store is
// created zoom times wider and deeper (4-bit rows become one byte per pixel).
LineSink EnlargingSink(ImageStore& store, uint64_t total, uint32_t sourceBits);

// The view gamma table of the swapped RGB sink: value i maps to 255 × (i / 255) ^ (100 / gamma),
// the straight line for a gamma of 0 or less.
LevelTable ViewGammaTable(int gamma);

}  // namespace pxm
