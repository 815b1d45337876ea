#pragma once

#include <cstdint>
#include <vector>

// Nearest-neighbour scaling: which source column and row each destination pixel copies.
namespace pxm {

// The Scale dialog's choices. A target of 0 means "not given": the percent decides.
struct ScaleSettings {
  int32_t horizontalPercent = 100;
  int32_t verticalPercent = 100;
  uint32_t targetWidth = 0;
  uint32_t targetDepth = 0;
};

// The range every percent and target size of the dialog is held to.
constexpr int32_t kScaleLeast = 16;
constexpr int32_t kScaleMost = 32760;
// A typed value brought into that range, as the dialog's controls do.
int32_t ClampScaleValue(int64_t value);

// One axis of the destination: the percent its table is stepped by and its size in pixels.
struct ScaledAxis {
  uint32_t percent = 0;
  uint64_t size = 0;
};

// A given target fixes the size and the percent is worked back from it (target × 100 div
// source, so it may round down to 0); otherwise the size is percent × source div 100.
ScaledAxis ScaleAxis(uint32_t sourceSize, int32_t percent, uint32_t target);

// Fills `table` with `size` source positions: a running sum stepped by 1 / (percent × 0.01),
// truncated, and held at sourceSize - 1 once the sum passes it. The steps accumulate in floating
// point, so a position that should land exactly on a whole number may fall just short of it;
// that is how every scaled picture has always come out. Throws std::bad_alloc.
void BuildScaleTable(std::vector<uint32_t>& table, uint64_t size, uint32_t percent,
                     uint32_t sourceSize);

}  // namespace pxm
