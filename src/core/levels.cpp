#include "core/levels.h"

#include <algorithm>
#include <cmath>

namespace pxm {

LevelTable ContrastBrightnessTable(int contrast, int brightness, uint8_t lowest, uint8_t highest) {
  double d = 256.0 - 2.0 * contrast;
  if (d <= 0.001) d = 0.001;
  const double slope = 256.0 / d;
  double v = brightness - contrast;
  LevelTable table{};
  for (uint8_t& entry : table) {
    entry = v > highest ? highest : v < lowest ? lowest : static_cast<uint8_t>(v);
    v += slope;
  }
  return table;
}

LevelTable PowerCurve(double exponent) {
  LevelTable table{};
  for (size_t i = 0; i < table.size(); ++i) {
    const double v = 255.0 * std::pow(static_cast<double>(i) / 255.0, exponent) + 0.5;
    table[i] = static_cast<uint8_t>(std::clamp(v, 0.0, 255.0));
  }
  return table;
}

}  // namespace pxm
