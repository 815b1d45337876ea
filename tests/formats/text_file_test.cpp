#include "formats/text_file.h"

#include <gtest/gtest.h>

#include <set>

#include "config/settings.h"
#include "core/error_codes.h"
#include "formats/text_font.h"
#include "support/decoded.h"

namespace pxm {
namespace {

TEST(TextFont, EveryPrintableCharacterHasItsOwnGlyphInsideItsCell) {
  std::set<Glyph> seen;
  for (uint32_t c = 33; c < 127; ++c) {
    const Glyph& g = TextGlyph(c);
    EXPECT_NE(g, TextGlyph(0)) << char(c);
    EXPECT_TRUE(seen.insert(g).second) << "same glyph again: " << char(c);
    // Rows 0 to 2 and 15 part the lines; only the underscore reaches the eighth column.
    for (uint32_t r : {0u, 1u, 2u, 15u}) EXPECT_EQ(g[r], 0) << char(c) << " row " << r;
    for (uint32_t r = 0; r < kGlyphHeight && c != '_'; ++r) EXPECT_EQ(g[r] & 1, 0) << char(c);
  }
  EXPECT_EQ(TextGlyph(' '), Glyph{});
  for (uint32_t c : {0u, 9u, 127u, 200u}) EXPECT_EQ(TextGlyph(c), TextGlyph(0));
  EXPECT_EQ(TextGlyph(0)[3], 0xFE);  // the box's top edge
}

TEST(TextFile, LinesTabsAndCharactersMakeTheCells) {
  struct Case {
    const char* what;
    std::string text;
    uint32_t columns;
    int32_t lines;
  };
  const Case cases[] = {
      {"two lines", "ab\ncde", 3, 2},
      {"line ends of three kinds", "a\r\nb\rc\n", 1, 3},
      {"a blank line between", "a\n\nb", 1, 3},
      {"tab to column 8", "\tx", 9, 1},
      {"tab after text", "abc\tx\ty", 17, 1},
      {"empty file", "", 1, 1},
      {"two-byte character", "\xC3\xA9t\xC3\xA9", 3, 1},
      {"four-byte character", "\xF0\x9F\x98\x80!", 2, 1},
      {"lead byte without its follower", "\xC3(", 2, 1},
      {"control characters", std::string("a\0b\x1B", 4), 4, 1},
      {"a line too long", std::string(5000, 'x') + "\nab", kTextMaxColumns, 2},
  };
  test::TempDir dir;
  for (const Case& c : cases) {
    const test::Decoded d = test::DecodeBytes(dir, "t.txt", c.text);
    ASSERT_EQ(d.readCode, kOk) << c.what;
    EXPECT_EQ(d.info.width, c.columns * 8) << c.what;
    EXPECT_EQ(d.info.depth, c.lines * 16) << c.what;
    EXPECT_EQ(d.info.bits, 1u) << c.what;
  }
  EXPECT_EQ(test::DecodeBytes(dir, "t.txt", "ab\ncde").info.description,
            "Text, 2 lines of up to 3 characters");
}

TEST(TextFile, GlyphsBlackOnWhiteOrInverted) {
  test::TempDir dir;
  for (int invert : {0, 1}) {
    ScopedSettings settings;
    settings->InvertTextFiles = invert;
    const test::Decoded d = test::DecodeBytes(dir, "t.txt", "Hi\n\xC3\xA9");
    ASSERT_EQ(d.readCode, kOk);
    EXPECT_EQ(d.info.palette[0], (Rgb{0, 0, 0}));
    EXPECT_EQ(d.info.palette[1], (Rgb{255, 255, 255}));
    const uint8_t flip = invert ? 0x00 : 0xFF;
    for (int32_t r = 0; r < 16; ++r) {
      EXPECT_EQ(d.rows.at(r), (test::Bytes{uint8_t(TextGlyph('H')[size_t(r)] ^ flip),
                                           uint8_t(TextGlyph('i')[size_t(r)] ^ flip)}));
      // The second line: one box, then the background to the picture's edge.
      EXPECT_EQ(d.rows.at(16 + r), (test::Bytes{uint8_t(TextGlyph(0)[size_t(r)] ^ flip), flip}));
    }
  }
}

TEST(TextFile, TheLineLimitAndTheSizeLimit) {
  test::TempDir dir;
  ScopedSettings settings;
  settings->TextFileLimit = 2;
  test::Decoded d = test::DecodeBytes(dir, "t.txt", "one\ntwo\nthree, longer\n");
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.info.depth, 32);
  EXPECT_EQ(d.info.width, 24u);  // the third line does not count
  // With no limit the whole file is the picture, and a huge file is refused before reading.
  const std::string huge(kTextMaxBytes + 1, 'x');
  EXPECT_EQ(test::DecodeBytes(dir, "t.txt", huge).infoCode, kOk);
  settings->TextFileLimit = 0;
  EXPECT_EQ(test::DecodeBytes(dir, "t.txt", huge).infoCode, kUnsuitableImage);
}

}  // namespace
}  // namespace pxm
