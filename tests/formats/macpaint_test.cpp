#include "formats/macpaint.h"

#include <gtest/gtest.h>

#include "config/settings.h"
#include "core/bytes.h"
#include "core/error_codes.h"
#include "formats/macbinary.h"
#include "support/decoded.h"

namespace pxm {
namespace {

using test::Be;
using test::Raw;
using Bytes = std::vector<uint8_t>;

// A page whose first row is coded as literals and whose other rows are one run each; the run of
// the last rows is split across a row end, as some painters wrote it.
std::string Page() {
  std::string data(512, '\0');
  data[3] = 2;                                                 // version 2
  data += Raw({2, 0x80, 0x01, 0xFF}) + Raw({256 - 68, 0x00});  // 0x80, 0x01, 0xFF, 69 zeros
  for (int y = 1; y < 718; ++y) data += Raw({256 - 71, y & 1 ? 0xAA : 0x00});
  return data + Raw({256 - 127, 0xFF, 256 - 15, 0xFF});  // 144 bytes: rows 718 and 719
}

std::string MacBinary(int version, const std::string& type, uint32_t dataLength) {
  std::string h(128, '\0');
  h[1] = 5;
  h.replace(2, 5, "Tiger");
  h.replace(65, 4, type);
  h.replace(83, 4, Be(dataLength, 4));
  if (version == 3) h.replace(102, 4, "mBIN");
  if (version >= 2) {
    h[122] = h[123] = static_cast<char>(129);
    const uint16_t crc = MacBinaryCrc({reinterpret_cast<const uint8_t*>(h.data()), 124});
    h.replace(124, 2, Be(crc, 2));
  }
  return h;
}

TEST(MacRead, PagesBehindEveryKindOfHeader) {
  test::TempDir dir;
  const std::string page = Page();
  const std::string padding(128 - page.size() % 128, '\0');
  struct Case {
    const char* what;
    std::string file;
    const char* description;
  };
  const Case cases[] = {
      {"plain", page, "MacPaint picture"},
      {"MacBinary I", MacBinary(1, "PNTG", uint32_t(page.size())) + page + padding,
       "MacPaint picture, MacBinary header"},
      {"MacBinary II", MacBinary(2, "????", uint32_t(page.size())) + page + padding,
       "MacPaint picture, MacBinary header"},
      {"MacBinary III", MacBinary(3, "????", uint32_t(page.size())) + page,
       "MacPaint picture, MacBinary header"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const test::Decoded d = test::DecodeBytes(dir, "p.mac", c.file);
    ASSERT_EQ(d.readCode, kOk);
    EXPECT_EQ(d.info.description, c.description);
    EXPECT_EQ(std::tuple(d.info.width, d.info.depth, d.info.bits), std::tuple(576u, 720, 1u));
    // Set bits are black in the file, white in the store.
    Bytes top(72, 0xFF);
    top[0] = 0x7F, top[1] = 0xFE, top[2] = 0x00;
    EXPECT_EQ(d.rows.at(0), top);
    EXPECT_EQ(d.rows.at(1), Bytes(72, 0x55));
    EXPECT_EQ(d.rows.at(719), Bytes(72, 0x00));
  }
  // A first-version header with a foreign type and a busy tail is taken for the picture's own.
  std::string foreign = MacBinary(1, "TEXT", uint32_t(page.size()));
  foreign[110] = 1;
  EXPECT_EQ(test::DecodeBytes(dir, "p.mac", foreign + page).info.description, "MacPaint picture");
}

TEST(MacRead, DamagedFiles) {
  test::TempDir dir;
  const std::string page = Page();
  // Too short for the header and the least the rows take; the ~200-byte file of the size rule.
  EXPECT_EQ(test::DecodeBytes(dir, "p.mac", page.substr(0, 900)).infoCode, kCorruptedFile);
  EXPECT_EQ(test::DecodeBytes(dir, "p.mac", std::string(200, '\0')).infoCode, kCorruptedFile);
  const test::Decoded cut = test::DecodeBytes(dir, "p.mac", page.substr(0, page.size() - 3));
  EXPECT_EQ(cut.readCode, kReadError);
  EXPECT_EQ(cut.rows.size(), 718u);
}

TEST(MacWrite, PicturesGoTopLeftOnAWhitePage) {
  test::TempDir dir;
  ScopedSettings settings;
  settings->CreateMacbinaryHeader = 0;
  for (auto [w, h] : {std::pair{1u, 1}, {9u, 5}, {575u, 719}, {576u, 720}}) {
    const test::Picture p = test::Pattern(w, h, 1);
    ASSERT_EQ(test::WritePicture(p, dir / "w.mac"), kOk) << w;
    test::Picture q;
    ASSERT_EQ(test::ReadPicture(dir / "w.mac", q), kOk) << w;
    for (int32_t y = 0; y < 720; y += (y < h + 1 ? 1 : 97))
      for (uint32_t x = 0; x < 576; x += (x < w + 9 ? 1 : 61))
        ASSERT_EQ(q.Pixel(x, y), x < w && y < h ? p.Pixel(x, y) : 1u) << w << " " << x << "," << y;
  }
  EXPECT_EQ(test::ReadFileBytes(dir / "w.mac").substr(0, 512), std::string(512, '\0'));
  EXPECT_EQ(test::WritePicture(test::Pattern(577, 1, 1), dir / "x.mac"), kUnsuitableImage);
  EXPECT_EQ(test::WritePicture(test::Pattern(8, 721, 1), dir / "x.mac"), kUnsuitableImage);
  EXPECT_EQ(test::WritePicture(test::Pattern(8, 8, 8), dir / "x.mac"), kUnsuitableImage);
}

TEST(MacWrite, MacBinaryHeaderWhenAskedFor) {
  test::TempDir dir;
  ScopedSettings settings;
  settings->CreateMacbinaryHeader = 1;
  ASSERT_EQ(test::WritePicture(test::Pattern(30, 20, 1), dir / "A picture name longer than 31.mac"),
            kOk);
  const std::string f = test::ReadFileBytes(dir / "A picture name longer than 31.mac");
  ASSERT_EQ(f.size() % 128, 0u);
  const auto* h = reinterpret_cast<const uint8_t*>(f.data());
  EXPECT_EQ(f.substr(0, 33), Raw({0, 31}) + "A picture name longer than 31.m");
  EXPECT_EQ(f.substr(65, 8), "PNTGMPNT");
  const uint32_t dataLength = LoadBe32(h + 83);
  EXPECT_GT(dataLength, 512u + 720u);
  EXPECT_LE(f.size() - 128 - dataLength, 127u);  // padded to a whole block, no more
  EXPECT_EQ(LoadBe32(h + 87), 0u);
  EXPECT_EQ(std::pair(h[122], h[123]), std::pair(uint8_t{129}, uint8_t{129}));
  EXPECT_EQ(LoadBe16(h + 124), MacBinaryCrc({h, 124}));
  EXPECT_EQ(LoadBe32(h + 91), LoadBe32(h + 95));
  EXPECT_GT(LoadBe32(h + 91), MacTimeFromUnix(1700000000));
  test::Picture q;
  ASSERT_EQ(test::ReadPicture(dir / "A picture name longer than 31.mac", q), kOk);
  EXPECT_EQ(q.Pixel(3, 2), test::Pattern(30, 20, 1).Pixel(3, 2));
  // 48 rows of four bytes and 672 of two make 2048 bytes of data: no padding at all.
  ASSERT_EQ(test::WritePicture(test::Picture::Blank(1, 48, 1), dir / "b.mac"), kOk);
  EXPECT_EQ(test::ReadFileBytes(dir / "b.mac").size(), 128u + 2048u);
}

}  // namespace
}  // namespace pxm
