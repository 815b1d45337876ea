#include "formats/iff.h"

#include <gtest/gtest.h>

#include "config/settings.h"
#include "core/error_codes.h"
#include "formats/byte_run1.h"
#include "support/decoded.h"

namespace pxm {
namespace {

using test::Be;
using test::Raw;
using Bytes = std::vector<uint8_t>;

std::string Chunk(const std::string& id, const std::string& data) {
  return id + Be(uint32_t(data.size()), 4) + data + (data.size() % 2 ? std::string(1, '\0') : "");
}
std::string Bmhd(int width, int height, int planes, int compression, int masking = 0) {
  return Chunk("BMHD", Be(width, 2) + Be(height, 2) + Be(0, 4) +
                           Raw({planes, masking, compression, 0, 0, 0, 0, 0}) + Be(width, 2) +
                           Be(height, 2));
}
std::string Form(const std::string& type, const std::string& chunks) {
  return "FORM" + Be(uint32_t(chunks.size() + 4), 4) + type + chunks;
}
std::string BodyOf(const std::string& file) {
  return file.substr(file.find("BODY") + 8);
}

TEST(ByteRun1, RunsAreOnlyFoundInTheFirst127BytesOfARow) {
  auto encode = [](const Bytes& row) {
    Bytes out;
    EncodeByteRun1(row.data(), row.size(), out);
    return out;
  };
  // 300 bytes of one value: 128 copies, then 128 and 44 literals.
  Bytes want = {129, 7, 127};
  want.insert(want.end(), 128, 7);
  want.push_back(43);
  want.insert(want.end(), 44, 7);
  EXPECT_EQ(encode(Bytes(300, 7)), want);
  EXPECT_EQ(encode({1, 2, 3, 3, 3, 4, 5, 5}), (Bytes{1, 1, 2, 254, 3, 0, 4, 255, 5}));
}

TEST(IffWrite, ChunksLengthsAndRows) {
  ScopedSettings settings;
  settings->CreateIffCompressed = 0;
  test::TempDir dir;
  // One pixel of one bit: 89 bytes and a pad byte, which the BODY length counts.
  test::Picture p = test::Picture::Blank(1, 1, 1);
  p.palette[0] = Rgb{1, 2, 3};
  p.SetPixel(0, 0, 1);
  ASSERT_EQ(test::WritePicture(p, dir / "a.lbm"), kOk);
  const std::string bmhd = "BMHD" + Be(20, 4) + Be(1, 2) + Be(1, 2) + Be(0, 4) +
                           Raw({1, 0, 0, 0, 0, 0, 0, 0}) + Be(1, 2) + Be(1, 2);
  const std::string anno = "ANNO" + Be(18, 4) + "PXM/Windows 0.00" + Raw({0, 128});
  EXPECT_EQ(test::ReadFileBytes(dir / "a.lbm"), "FORM" + Be(82, 4) + "ILBM" + bmhd + "CMAP" +
                                                    Be(6, 4) + Raw({1, 2, 3, 255, 255, 255}) +
                                                    anno + "BODY" + Be(2, 4) + Raw({0x80, 0}));

  // A 20-pixel-wide picture has 3-byte plane rows: 8 planes of 3 bytes a row.
  ASSERT_EQ(test::WritePicture(test::Pattern(20, 2, 8), dir / "b.iff"), kOk);
  EXPECT_EQ(BodyOf(test::ReadFileBytes(dir / "b.iff")).size(), 48u);

  // Plane p holds bit p of each pixel, the leftmost in bit 7; PBM keeps a byte a pixel; 24
  // planes are red's bits, green's, then blue's; each plane row is coded on its own.
  test::Picture eight = test::Picture::Blank(3, 1, 8);
  eight.SetPixel(0, 0, 0x81);
  eight.SetPixel(1, 0, 0x02);
  eight.SetPixel(2, 0, 0xFF);
  test::Picture deep = test::Picture::Blank(1, 1, 24);
  deep.SetPixel(0, 0, 0x8102FF);
  struct Case {
    const test::Picture& picture;
    bool pbm, compressed;
    std::string body;
  };
  const Case cases[] = {
      {eight, true, false, Raw({0x81, 0x02, 0xFF, 0})},
      {eight, false, false, Raw({0xA0, 0x60, 0x20, 0x20, 0x20, 0x20, 0x20, 0xA0})},
      {eight, false, true,
       Raw({0, 0xA0, 0, 0x60, 0, 0x20, 0, 0x20, 0, 0x20, 0, 0x20, 0, 0x20, 0, 0xA0})},
      {deep, false, false,
       Raw({0x80, 0, 0, 0, 0, 0, 0, 0x80, 0, 0x80, 0, 0, 0, 0, 0, 0}) + std::string(8, '\x80')},
  };
  for (const Case& c : cases) {
    settings->CreateIffPBM = c.pbm;
    settings->CreateIffCompressed = c.compressed;
    ASSERT_EQ(test::WritePicture(c.picture, dir / "c.iff"), kOk);
    const std::string f = test::ReadFileBytes(dir / "c.iff");
    EXPECT_EQ(f.substr(8, 4), c.pbm ? "PBM " : "ILBM");
    EXPECT_EQ(BodyOf(f), c.body);
  }
}

TEST(IffRead, FormsPlanesAndQuirks) {
  std::string map(800, '\x11');  // its data starts at 20: 800 bytes send info to offset 32
  const std::string planted = Bmhd(2, 1, 1, 0) + "BODY" + Be(0, 4);
  map.replace(12, planted.size(), planted);
  std::string deep = Raw({0x80, 0, 0, 0, 0, 0, 0, 0x80, 0, 0x80, 0, 0, 0, 0, 0, 0});
  deep += std::string(8, '\x80');
  struct Case {
    const char* what;
    std::string file;
    std::vector<Bytes> rows;
  };
  const Case cases[] = {
      // 128 makes nothing; a run of two passes the 1-byte line and its excess is dropped.
      // Masking is not looked at.
      {"crossing code",
       Form("ILBM", Bmhd(8, 2, 1, 1, 1) + Chunk("BODY", Raw({128, 255, 0xAA, 0, 0x55}))),
       {{0xAA}, {0x55}}},
      {"three planes",
       Form("ILBM", Bmhd(3, 1, 3, 0) + Chunk("CMAP", Raw({1, 2, 3, 4, 5, 6})) +
                        Chunk("BODY", Raw({0xA0, 0x60, 0x80}))),
       {{0x52, 0x30, 0, 0}}},
      {"chunky", Form("PBM ", Bmhd(3, 1, 8, 0) + Chunk("BODY", Raw({7, 8, 9}))), {{7, 8, 9}}},
      {"deep", Form("ILBM", Bmhd(1, 1, 24, 0) + Chunk("BODY", deep)), {{0x81, 0x02, 0xFF}}},
      // An oversized map sends the walk to offset 800 - 768 = 32 (D36).
      {"oversized map",
       Form("ILBM", "CMAP" + Be(800, 4) + map + Bmhd(2, 1, 1, 0) + Chunk("BODY", Raw({0x40}))),
       {{0x40}}},
  };
  test::TempDir dir;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    test::Decoded d = test::DecodeBytes(dir, "i.iff", c.file);
    ASSERT_EQ(d.readCode, kOk);
    for (size_t y = 0; y < c.rows.size(); ++y) EXPECT_EQ(d.rows.at(int32_t(y)), c.rows[y]);
  }
  test::Decoded d = test::DecodeBytes(dir, "i.iff", cases[1].file);
  EXPECT_EQ(d.info.palette[1], (Rgb{4, 5, 6}));
  d = test::DecodeBytes(dir, "i.iff", cases[4].file);
  EXPECT_EQ(d.info.width, 2u);  // from the BMHD planted at offset 32
  EXPECT_EQ(d.info.palette[0], (Rgb{0, 0, 0}));

  // A colour map that sends the walk back to itself is damage, not a loop.
  const std::string loop = Form("ILBM", "CMAP" + Be(780, 4) + std::string(780, '\0'));
  EXPECT_EQ(test::DecodeBytes(dir, "i.iff", loop).infoCode, kCorruptedFile);
  const std::string good = Form("ILBM", Bmhd(8, 2, 1, 1) + Chunk("BODY", Raw({0, 1, 1, 2})));
  EXPECT_EQ(test::DecodeBytes(dir, "i.iff", "FOR").infoCode, kReadError);
  EXPECT_EQ(test::DecodeBytes(dir, "i.iff", "RIFF" + good.substr(4)).infoCode, kCorruptedFile);
  EXPECT_EQ(test::DecodeBytes(dir, "i.iff", good.substr(0, 30)).infoCode, kCorruptedFile);
  EXPECT_EQ(test::DecodeBytes(dir, "i.iff", Form("ILBM", Bmhd(8, 2, 1, 0))).infoCode, kReadError);
  EXPECT_EQ(test::DecodeBytes(dir, "i.iff", good).readCode, kReadError);  // the codes run out
}

TEST(IffList, ChunkReport) {
  test::TempDir dir;
  ASSERT_EQ(test::WritePicture(test::Pattern(5, 3, 2), dir / "r.lbm"), kOk);
  std::vector<std::string> lines;
  ImageInfo info;
  ASSERT_EQ(IffList(info, dir / "r.lbm", lines), kOk);
  const size_t size = test::ReadFileBytes(dir / "r.lbm").size();
  ASSERT_EQ(lines.size(), 21u);  // 13 header fields among them
  EXPECT_EQ(lines[0], "FORM chunk, " + std::to_string(size - 8) + " bytes");
  EXPECT_EQ(lines[1], "  Form type ILBM");
  EXPECT_EQ(lines[2], "BMHD chunk, 20 bytes");
  EXPECT_EQ(lines[5] + lines[7] + lines[15], "  X origin 0  Planes 2  Page height 3");
  EXPECT_EQ(lines[17], "  Colour map of 4 entries");
  EXPECT_EQ(lines[19], "  Text: PXM/Windows 0.00");
  EXPECT_EQ(lines[20], "BODY chunk, " + std::to_string(size - 94) + " bytes");
}

TEST(IffRoundTrip, EveryDepthBothFormsAndCodings) {
  test::TempDir dir;
  for (int mode = 0; mode < 4; ++mode)
    for (uint32_t bits : {1u, 2u, 5u, 8u, 24u})
      for (auto [w, h] : {std::pair{1u, 1}, {20u, 2}, {33u, 17}, {300u, 2}}) {
        ScopedSettings settings;
        settings->CreateIffCompressed = mode & 1;
        settings->CreateIffPBM = mode >> 1;
        // 300 pixels of one colour make runs longer than a code.
        test::Picture p =
            w == 300 ? test::Picture::Blank(w, h, bits) : test::Pattern(w, h, bits, w);
        EXPECT_TRUE(test::RoundTrips(p, dir / "r.iff", bits))
            << w << "x" << h << "x" << bits << " " << mode;
      }
}

}  // namespace
}  // namespace pxm
