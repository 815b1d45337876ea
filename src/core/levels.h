#pragma once

#include <array>
#include <cstdint>

// Tables over the 256 levels of a colour component, shared by the dithering engine, the TIFF
// writer and the views.
namespace pxm {

using LevelTable = std::array<uint8_t, 256>;

// Contrast and brightness as a straight line over the levels: level i maps to
// (brightness - contrast) + i × 256 / (256 - 2 × contrast), the divisor held at 0.001 or more,
// cut to lowest..highest.
LevelTable ContrastBrightnessTable(int contrast, int brightness, uint8_t lowest, uint8_t highest);

// Level i to 255 × (i / 255) ^ exponent, rounded, within 0..255.
LevelTable PowerCurve(double exponent);

// The grey of a colour taken as its first stored byte b in all three components: the three
// weighted parts are each rounded down, so a slightly darkened copy of b (255 gives 254).
constexpr int FirstByteGrey(int b) {
  return (59 * b) / 100 + (30 * b) / 100 + (11 * b) / 100;
}

}  // namespace pxm
