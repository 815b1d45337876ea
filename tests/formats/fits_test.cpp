#include "formats/fits.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "core/error_codes.h"
#include "core/row_format.h"
#include "formats/fits_cards.h"
#include "support/decoded.h"
#include "support/picture.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

using test::Be;
using test::Pattern;
using test::Picture;
using test::Raw;
using Bytes = std::vector<uint8_t>;

std::string Card(const std::string& text) { return text + std::string(80 - text.size(), ' '); }

// A header of the given cards and END, padded to 2880 bytes.
std::string Head(const std::vector<std::string>& cards) {
  std::string h;
  for (const std::string& c : cards) h += Card(c);
  h += Card("END");
  return h + std::string(2880 - h.size(), ' ');
}

test::Decoded DecodeBytes(const test::TempDir& dir, const std::string& bytes, int abortOn = 0) {
  test::WriteFileBytes(dir / "f.fit", bytes);
  return test::Decode(dir / "f.fit", abortOn);
}

TEST(FitsWrite, CardsPaddingAndGreyValues) {
  test::TempDir dir;
  Picture p = Picture::Blank(100, 50, 24);
  p.SetPixel(0, 0, 0xFFFFFF);  // 76 + 150 + 28
  p.SetPixel(1, 0, 0x102030);  // 4 + 18 + 5
  ASSERT_EQ(test::WritePicture(p, dir / "w.fts"), kOk);
  const std::string f = test::ReadFileBytes(dir / "w.fts");
  ASSERT_EQ(f.size(), 8640u);
  const std::string cards[] = {
      "SIMPLE  =                    T", "BITPIX  =                    8",
      "NAXIS   =                    2", "NAXIS1  =                  100",
      "NAXIS2  =                   50", "ORIGIN  =     PXM/Windows 0.00",
      "BSCALE  =        1.0000000E+00", "BZERO   =        0.0000000E+00",
      "DATAMIN =        0.0000000E+00", "DATAMAX =      255.0000000E+00",
      "END"};
  for (size_t i = 0; i < std::size(cards); ++i) EXPECT_EQ(f.substr(80 * i, 80), Card(cards[i])) << i;
  EXPECT_EQ(f.substr(880, 2000), std::string(2000, ' '));
  EXPECT_EQ(f.substr(2880, 3), Raw({254, 27, 0}));
  EXPECT_EQ(f.substr(7880), std::string(760, '\0'));

  // One bit: 0 or 255 whatever the palette; palettes: the luminance of each entry.
  Picture mono = Picture::Blank(3, 1, 1);
  mono.palette[1] = Rgb{0, 0, 0};
  mono.SetPixel(1, 0, 1);
  ASSERT_EQ(test::WritePicture(mono, dir / "m.fit"), kOk);
  EXPECT_EQ(test::ReadFileBytes(dir / "m.fit").substr(2880, 4), Raw({0, 255, 0, 0}));
  Picture four = Picture::Blank(2, 1, 4);
  four.palette[5] = Rgb{100, 200, 50};  // 30 + 118 + 5
  four.palette[6] = Rgb{255, 0, 0};     // 76
  four.SetPixel(0, 0, 5);
  four.SetPixel(1, 0, 6);
  ASSERT_EQ(test::WritePicture(four, dir / "c.fit"), kOk);
  EXPECT_EQ(test::ReadFileBytes(dir / "c.fit").substr(2880, 2), Raw({153, 76}));
}

TEST(FitsRead, EverySampleSizeByItsOwnRule) {
  test::TempDir dir;
  struct Case {
    std::vector<std::string> cards;
    std::string data;
    Bytes row;
  };
  const Case cases[] = {
      // value = sample × BSCALE + BZERO, truncated, low byte.
      {{"BITPIX  =                    8", "BSCALE  = 2.0", "BZERO   = -1.0"},
       Raw({10, 200, 0, 0}),
       {19, 143, 255, 255}},
      // 16 bits: a sample every four bytes, halved; the right half lies past the row (zero).
      {{"BITPIX  =                   16"}, Raw({1, 0, 0x12, 0x34, 0, 200, 0x56, 0x78}), {128, 100, 0, 0}},
      // 24 bits: the first byte of each group used three times, divided by three.
      {{"BITPIX  = 24", "BZERO = 7"}, Raw({1, 9, 9, 0x80, 9, 9, 0, 0, 0, 0, 0, 0}), {2, 173, 2, 2}},
      // 32 bits, signed, halved; -32 is read the same way.
      {{"BITPIX  = 32"}, Be(256, 4) + Be(0xFFFFFF00, 4) + Be(uint32_t(-7), 4) + Be(0, 4), {128, 128, 253, 0}},
      {{"BITPIX  = -32"}, Be(256, 4) + Be(0xFFFFFF00, 4) + Be(uint32_t(-7), 4) + Be(0, 4), {128, 128, 253, 0}},
      // 64 bits: nothing is converted.
      {{"BITPIX  = -64"}, std::string(32, '\x55'), {0, 0, 0, 0}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.cards[0]);
    std::vector<std::string> cards = {"SIMPLE  = T", "NAXIS   = 2", "NAXIS1  = 4", "NAXIS2  = 1"};
    cards.insert(cards.end(), c.cards.begin(), c.cards.end());
    test::Decoded d = DecodeBytes(dir, Head(cards) + c.data);
    ASSERT_EQ(d.readCode, kOk);
    EXPECT_EQ(d.info.bits, 8u);
    EXPECT_EQ(d.info.palette[99], (Rgb{99, 99, 99}));
    EXPECT_EQ(d.rows.at(0), c.row);
  }
  test::Decoded d = DecodeBytes(dir, Head({"SIMPLE = T", "NAXIS = 2", "NAXIS1 = 4", "NAXIS2 = 1",
                                           "BITPIX = -32"}) + std::string(16, '\0'));
  EXPECT_EQ(d.info.description, "2 axis - 32 bits of grey");
}

TEST(FitsRead, HeadersThatAreMissingOrDamaged) {
  test::TempDir dir;
  const std::vector<std::string> base = {"SIMPLE  = T", "BITPIX = 8", "NAXIS = 2", "NAXIS1 = 3"};
  std::vector<std::string> full = base;
  full.push_back("NAXIS2 = 2");
  const std::string good = Head(full) + "abcdef";
  test::Decoded d = DecodeBytes(dir, good);
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.rows.at(1), (Bytes{'d', 'e', 'f'}));
  EXPECT_EQ(DecodeBytes(dir, Head(base) + "abcdef").infoCode, kNoBitmap);  // no NAXIS2
  EXPECT_EQ(DecodeBytes(dir, "SIMPL").infoCode, kReadError);
  EXPECT_EQ(DecodeBytes(dir, "simple" + good.substr(6)).infoCode, kCorruptedFile);
  // Samples the file cannot hold are refused before a store is made for them.
  EXPECT_EQ(DecodeBytes(dir, good.substr(0, good.size() - 1)).infoCode, kCorruptedFile);
  test::Decoded stopped = DecodeBytes(dir, good, 1);
  EXPECT_EQ(stopped.readCode, kCancelled);

  ImageInfo info;
  EXPECT_EQ(FitsInfo(info, dir / "missing.fit", 0), kOpenError);
  EXPECT_EQ(FitsRead(info, dir / "missing.fit"), kOpenError);
}

TEST(FitsCards, KeywordValueAndReport) {
  FitsCard c = ParseFitsCard(Card("NAXIS1=  640 / width").c_str());
  EXPECT_EQ(c.keyword, "NAXIS1");
  EXPECT_EQ(c.value, "640 / width");
  EXPECT_EQ(FitsInteger(c.value), 640);
  c = ParseFitsCard(Card("COMMENT   a  b").c_str());
  EXPECT_EQ(c.keyword, "COMMENT");
  EXPECT_EQ(c.value, "a  b");
  EXPECT_EQ(FitsInteger(" -16"), -16);
  EXPECT_EQ(FitsReal("255.0000000E+00", 0.0), 255.0);
  EXPECT_EQ(FitsReal("'text'", 1.0), 1.0);

  test::TempDir dir;
  test::WriteFileBytes(dir / "r.fit",
                       Head({"SIMPLE  = T", "BITPIX = 8", "HISTORY " + std::string(60, 'h')}));
  std::vector<std::string> lines;
  ImageInfo info;
  ASSERT_EQ(FitsList(info, dir / "r.fit", lines), kOk);
  // Lines are cut to the 55 characters of the list box.
  EXPECT_EQ(lines, (std::vector<std::string>{"SIMPLE = T", "BITPIX = 8",
                                             "HISTORY = " + std::string(45, 'h')}));
}

TEST(FitsRoundTrip, PicturesComeBackAsTheirGreyLevels) {
  test::TempDir dir;
  for (uint32_t bits : {1u, 4u, 8u, 24u})
    for (auto [w, h] : {std::pair{1u, 1}, {7u, 3}, {33u, 17}}) {
      SCOPED_TRACE(testing::Message() << w << "x" << h << "x" << bits);
      Picture p = Pattern(w, h, bits, w + bits);
      ASSERT_EQ(test::WritePicture(p, dir / "r.fit"), kOk);
      EXPECT_EQ(std::filesystem::file_size(dir / "r.fit") % 2880, 0u);
      Picture q;
      ImageInfo info;
      ASSERT_EQ(test::ReadPicture(dir / "r.fit", q, nullptr, &info), kOk);
      EXPECT_EQ(info.description, "2 axis - 8 bits of grey");
      for (int32_t y = 0; y < h; ++y)
        for (uint32_t x = 0; x < w; ++x) {
          const Rgb c = p.Colour(x, y);
          const uint32_t want = bits == 1 ? p.Pixel(x, y) * 255 : Luminance(c.red, c.green, c.blue);
          ASSERT_EQ(q.Pixel(x, y), want) << x << "," << y;
        }
    }
}

}  // namespace
}  // namespace pxm
