#pragma once

#include <cstdint>
#include <string_view>

#include "batch/print_job.h"

// The print engine's band makers. Each fills, band by band, the dots of the page that a part of
// the picture covers and nothing else, and answers 0, 4 when the user clicks (progress and the
// abort check run per row on the picture's store) or the sink's code.
namespace pxm {

// What every band of one picture shares.
struct BandJob {
  Host& host;
  ImageStore& store;  // the picture's store: progress and the abort check
  const BandSink& sink;
  PageSize page;
};

// A 1-bit picture held in `from`, stretched to fill `place` by nearest neighbour and sent at
// the printer's resolution: every dot of `place` on the page exactly once.
int SendBits(BandJob& job, ImageStore& from, const Palette& palette, const PageRect& place);

// Halftones made at the printer's resolution: the part of the picture in the job's store (one
// byte per pixel, or 24 bits) that shows is stretched dot for dot into a store of its own,
// dithered there in `mode`, and sent.
int SendDeviceHalftone(BandJob& job, ImageInfo& info, const PageRect& place, uint32_t mode,
                       std::string_view name);

// A palette or true-colour picture sent at its own resolution after contrast and brightness:
// the rows and columns of it that show on the page, each band stretched by the printer.
int SendPicture(BandJob& job, const ImageInfo& info, const PageRect& place, int32_t contrast,
                int32_t brightness);

// The caption of `plan`: black letters on white, at the printer's resolution.
int SendCaption(BandJob& job, const PrintPlacement& plan);

}  // namespace pxm
