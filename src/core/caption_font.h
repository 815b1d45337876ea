#pragma once

#include <cstdint>
#include <span>
#include <string_view>

// The small bitmap font of captions drawn into pictures (catalog pages, printed file names): one
// 5 x 9 glyph for each printable ASCII character, seven rows above the baseline and two for
// descenders, and a box for every other character. Drawn at whole-number scales.
namespace pxm {

constexpr uint32_t kCaptionGlyphWidth = 5;
constexpr uint32_t kCaptionGlyphHeight = 9;
// Each character takes one blank column after its glyph, each line one blank row above it.
constexpr uint32_t kCaptionAdvance = kCaptionGlyphWidth + 1;
constexpr uint32_t kCaptionLineHeight = kCaptionGlyphHeight + 1;

// Row `row` (0 = top, below 9) of a character's glyph: the leftmost of its five pixels is bit 4.
uint8_t CaptionGlyphRow(unsigned char c, uint32_t row);

// Width in pixels of `text` at `scale`: kCaptionAdvance × scale per character.
uint64_t CaptionWidth(std::string_view text, uint32_t scale);

// The longest beginning of `text` that fits in `width` pixels at `scale`.
std::string_view FitCaption(std::string_view text, uint64_t width, uint32_t scale);

// Sets to 1 the bytes of `ink` (one per pixel, column 0 first) under the ink of row `y` of a
// caption line of `text` drawn at `scale` from column 0; y counts from the line's top, below
// kCaptionLineHeight × scale. Other bytes, and pixels past the end of `ink`, are left alone.
void CaptionInk(std::string_view text, uint32_t y, uint32_t scale, std::span<uint8_t> ink);

}  // namespace pxm
