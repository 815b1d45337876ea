#pragma once

#include <array>
#include <cstdint>

// The program's own bitmap font for pictures of text files: one 8 x 16 glyph for each printable
// ASCII character and a box for every other character.
namespace pxm {

constexpr uint32_t kGlyphWidth = 8;
constexpr uint32_t kGlyphHeight = 16;

using Glyph = std::array<uint8_t, kGlyphHeight>;

// The glyph of a character, its rows top first, the leftmost pixel in the high bit of each row's
// byte. Characters outside 32..126 get the box.
const Glyph& TextGlyph(uint32_t character);

}  // namespace pxm
