#include "formats/fits.h"

#include <gtest/gtest.h>

#include "core/error_codes.h"
#include "support/decoded.h"

namespace pxm {
namespace {

using test::Be;
using test::Raw;
using Bytes = std::vector<uint8_t>;

std::string Card(const std::string& text) {
  return text + std::string(80 - text.size(), ' ');
}

// A header of the given cards and END, padded to 2880 bytes.
std::string Head(const std::vector<std::string>& cards) {
  std::string h;
  for (const std::string& c : cards) h += Card(c);
  h += Card("END");
  return h + std::string(2880 - h.size(), ' ');
}

TEST(FitsWrite, CardsPaddingAndGreyValues) {
  test::TempDir dir;
  test::Picture p = test::Picture::Blank(100, 50, 24);
  p.SetPixel(0, 0, 0xFFFFFF);  // 76 + 150 + 28
  p.SetPixel(1, 0, 0x102030);  // 4 + 18 + 5
  ASSERT_EQ(test::WritePicture(p, dir / "w.fts"), kOk);
  const std::string f = test::ReadFileBytes(dir / "w.fts");
  ASSERT_EQ(f.size(), 8640u);
  std::string cards;
  for (const char* c : {"SIMPLE  =                    T", "BITPIX  =                    8",
                        "NAXIS   =                    2", "NAXIS1  =                  100",
                        "NAXIS2  =                   50", "ORIGIN  =     PXM/Windows 0.00",
                        "BSCALE  =        1.0000000E+00", "BZERO   =        0.0000000E+00",
                        "DATAMIN =        0.0000000E+00", "DATAMAX =      255.0000000E+00", "END"})
    cards += Card(c);
  EXPECT_EQ(f.substr(0, 2880), cards + std::string(2000, ' '));
  EXPECT_EQ(f.substr(2880, 3), Raw({254, 27, 0}));
  EXPECT_EQ(f.substr(7880), std::string(760, '\0'));

  // Palettes: the luminance of each entry.
  test::Picture four = test::Picture::Blank(2, 1, 4);
  four.palette[5] = Rgb{100, 200, 50};  // 30 + 118 + 5
  four.SetPixel(0, 0, 5);
  ASSERT_EQ(test::WritePicture(four, dir / "c.fit"), kOk);
  EXPECT_EQ(test::ReadFileBytes(dir / "c.fit").substr(2880, 2), Raw({153, 0}));
}

TEST(FitsRead, EverySampleSizeByItsOwnRule) {
  struct Case {
    std::vector<std::string> cards;
    std::string data;
    Bytes row;
  };
  const std::string words = Be(256, 4) + Be(0xFFFFFF00, 4) + Be(uint32_t(-7), 4) + Be(0, 4);
  const Case cases[] = {
      // value = sample × BSCALE + BZERO, truncated, its low byte.
      {{"BITPIX  = 8", "BSCALE  = 2.0", "BZERO   = -1.0"},
       Raw({10, 200, 0, 0}),
       {19, 143, 255, 255}},
      // 16 bits: a sample every four bytes, halved; the right half lies past the row (zero).
      {{"BITPIX  = 16"}, Raw({1, 0, 0x12, 0x34, 0, 200, 0x56, 0x78}), {128, 100, 0, 0}},
      // 24 bits: the first byte of each group three times over, a third of it.
      {{"BITPIX  = 24", "BZERO = 7"},
       Raw({1, 9, 9, 0x80, 9, 9}) + std::string(6, '\0'),
       {2, 173, 2, 2}},
      // 32 bits signed and halved; -32 the same way; 64 bits not converted at all.
      {{"BITPIX  = 32"}, words, {128, 128, 253, 0}},
      {{"BITPIX  = -32"}, words, {128, 128, 253, 0}},
      {{"BITPIX  = -64"}, std::string(32, '\x55'), {0, 0, 0, 0}},
  };
  test::TempDir dir;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.cards[0]);
    std::vector<std::string> cards = {"SIMPLE  = T", "NAXIS   = 2", "NAXIS1  = 4", "NAXIS2  = 1"};
    cards.insert(cards.end(), c.cards.begin(), c.cards.end());
    test::Decoded d = test::DecodeBytes(dir, "f.fit", Head(cards) + c.data);
    ASSERT_EQ(d.readCode, kOk);
    EXPECT_EQ(d.info.bits, 8u);
    EXPECT_EQ(d.info.palette[99], (Rgb{99, 99, 99}));
    EXPECT_EQ(d.rows.at(0), c.row);
  }
  const std::vector<std::string> minus32 = {"SIMPLE = T", "NAXIS = 2", "NAXIS1 = 4", "NAXIS2 = 1",
                                            "BITPIX = -32"};
  EXPECT_EQ(test::DecodeBytes(dir, "f.fit", Head(minus32) + words).info.description,
            "2 axis - 32 bits of grey");
}

TEST(FitsRead, DamageAndTheCardReport) {
  test::TempDir dir;
  const std::vector<std::string> cards = {"SIMPLE  = T", "BITPIX=8 / bits", "NAXIS = 2",
                                          "NAXIS1 = 3", "HISTORY " + std::string(60, 'h')};
  std::vector<std::string> full = cards;
  full.push_back("NAXIS2 = 2");
  const std::string good = Head(full) + "abcdef";
  EXPECT_EQ(test::DecodeBytes(dir, "f.fit", good).rows.at(1), (Bytes{'d', 'e', 'f'}));
  EXPECT_EQ(test::DecodeBytes(dir, "f.fit", Head(cards) + "abcdef").infoCode, kNoBitmap);
  EXPECT_EQ(test::DecodeBytes(dir, "f.fit", "SIMPL").infoCode, kReadError);
  EXPECT_EQ(test::DecodeBytes(dir, "f.fit", "simple" + good.substr(6)).infoCode, kCorruptedFile);
  // Samples the file cannot hold are refused before a store is made for them.
  EXPECT_EQ(test::DecodeBytes(dir, "f.fit", good.substr(0, good.size() - 1)).infoCode,
            kCorruptedFile);

  // "KEYWORD = value" a card, cut to the 55 characters of the list box.
  std::vector<std::string> lines;
  ImageInfo info;
  ASSERT_EQ(FitsList(info, dir / "f.fit", lines), kOk);
  EXPECT_EQ(lines,
            (std::vector<std::string>{"SIMPLE = T", "BITPIX = 8 / bits", "NAXIS = 2", "NAXIS1 = 3",
                                      "HISTORY = " + std::string(45, 'h'), "NAXIS2 = 2"}));
}

}  // namespace
}  // namespace pxm
