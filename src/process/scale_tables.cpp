#include "process/scale_tables.h"

#include <algorithm>

namespace pxm {

int32_t ClampScaleValue(int64_t value) {
  return static_cast<int32_t>(std::clamp<int64_t>(value, kScaleLeast, kScaleMost));
}

ScaledAxis ScaleAxis(uint32_t sourceSize, int32_t percent, uint32_t target) {
  ScaledAxis axis;
  if (target != 0) {
    axis.percent = sourceSize ? static_cast<uint32_t>(uint64_t{target} * 100 / sourceSize) : 0;
    axis.size = target;
  } else {
    axis.percent = percent > 0 ? static_cast<uint32_t>(percent) : 0;
    axis.size = uint64_t{axis.percent} * sourceSize / 100;
  }
  return axis;
}

void BuildScaleTable(std::vector<uint32_t>& table, uint64_t size, uint32_t percent,
                     uint32_t sourceSize) {
  table.assign(static_cast<size_t>(size), 0);
  if (sourceSize == 0) return;
  const uint32_t last = sourceSize - 1;
  // A percent of 0 (a target far below the source) steps by infinity: every entry after the
  // first holds the last position. The comparison happens in floating point, before any
  // conversion, so an infinite or huge sum never reaches an integer.
  const double step = 1.0 / (percent * 0.01);
  double sum = 0.0;
  for (uint32_t& entry : table) {
    entry = sum >= last ? last : static_cast<uint32_t>(sum);
    sum += step;
  }
}

}  // namespace pxm
