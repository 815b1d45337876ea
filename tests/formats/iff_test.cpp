#include "formats/iff.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "config/settings.h"
#include "core/error_codes.h"
#include "formats/byte_run1.h"
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

std::string Chunk(const std::string& id, const std::string& data) {
  return id + Be(static_cast<uint32_t>(data.size()), 4) + data + (data.size() % 2 ? "\0" : "");
}
std::string Bmhd(int width, int height, int planes, int compression, int masking = 0) {
  return Chunk("BMHD", Be(width, 2) + Be(height, 2) + Be(0, 4) + Raw({planes, masking, compression, 0}) +
                           Be(0, 2) + Raw({1, 1}) + Be(width, 2) + Be(height, 2));
}
std::string Form(const std::string& type, const std::string& chunks) {
  return "FORM" + Be(static_cast<uint32_t>(chunks.size() + 4), 4) + type + chunks;
}

test::Decoded DecodeBytes(const test::TempDir& dir, const std::string& bytes, int abortOn = 0) {
  test::WriteFileBytes(dir / "i.iff", bytes);
  return test::Decode(dir / "i.iff", abortOn);
}

Bytes Encode(const Bytes& row) {
  Bytes out;
  EncodeByteRun1(row.data(), row.size(), out);
  return out;
}

TEST(ByteRun1, RunsAreOnlyFoundInTheFirst127BytesOfARow) {
  // 300 bytes of one value: 128 copies, then 128 and 44 literals.
  Bytes want = {129, 7, 127};
  want.insert(want.end(), 128, 7);
  want.push_back(43);
  want.insert(want.end(), 44, 7);
  EXPECT_EQ(Encode(Bytes(300, 7)), want);
  // Literals, a run of three, and a run of two.
  EXPECT_EQ(Encode({1, 2, 3, 3, 3, 4, 5, 5}), (Bytes{1, 1, 2, 254, 3, 0, 4, 255, 5}));
  EXPECT_EQ(Encode({9}), (Bytes{0, 9}));

  test::TempDir dir;
  // 128 makes nothing; a code is applied whole past the line length.
  test::WriteFileBytes(dir / "c", Raw({128, 1, 4, 5, 253, 6}));
  InputFile in;
  ASSERT_TRUE(in.Open(dir / "c"));
  Bytes out(3 + kByteRun1Overrun, 0);
  ASSERT_TRUE(DecodeByteRun1(in, out.data(), 3));
  EXPECT_EQ(Bytes(out.begin(), out.begin() + 6), (Bytes{4, 5, 6, 6, 6, 6}));
  EXPECT_FALSE(DecodeByteRun1(in, out.data(), 1));  // the data has ended
}

TEST(IffWrite, HeaderChunksAnnotationAndPaddedLengths) {
  ScopedSettings settings;
  settings->CreateIffCompressed = 0;
  test::TempDir dir;
  // One pixel of one bit: 89 bytes, padded to 90; the body length counts the pad.
  Picture p = Picture::Blank(1, 1, 1);
  p.palette[0] = Rgb{1, 2, 3};
  p.SetPixel(0, 0, 1);
  ASSERT_EQ(test::WritePicture(p, dir / "a.lbm"), kOk);
  const std::string anno = "ANNO" + Be(18, 4) + "PXM/Windows 0.00" + Raw({0, 128});
  const std::string bmhd = "BMHD" + Be(20, 4) + Be(1, 2) + Be(1, 2) + Be(0, 4) +
                           Raw({1, 0, 0, 0}) + Be(0, 2) + Raw({0, 0}) + Be(1, 2) + Be(1, 2);
  EXPECT_EQ(test::ReadFileBytes(dir / "a.lbm"),
            "FORM" + Be(82, 4) + "ILBM" + bmhd + "CMAP" + Be(6, 4) + Raw({1, 2, 3, 255, 255, 255}) +
                anno + "BODY" + Be(2, 4) + Raw({0x80, 0}));

  // A 20-pixel-wide picture has 3-byte plane rows: 8 planes of 3 bytes for two rows.
  ASSERT_EQ(test::WritePicture(Pattern(20, 2, 8), dir / "b.iff"), kOk);
  const std::string b = test::ReadFileBytes(dir / "b.iff");
  const size_t body = b.find("BODY");
  ASSERT_NE(body, std::string::npos);
  EXPECT_EQ(b.substr(body + 4, 4), Be(48, 4));
  EXPECT_EQ(b.size(), body + 8 + 48);
  EXPECT_EQ(b.substr(4, 4), Be(static_cast<uint32_t>(b.size() - 8), 4));
  EXPECT_EQ(b.find("CMAP" + Be(768, 4)), 40u);
}

TEST(IffWrite, ChunkyPlanarAndDeepRows) {
  ScopedSettings settings;
  settings->CreateIffCompressed = 0;
  test::TempDir dir;
  Picture p = Picture::Blank(3, 1, 8);
  p.SetPixel(0, 0, 0x81);
  p.SetPixel(1, 0, 0x02);
  p.SetPixel(2, 0, 0xFF);
  auto bodyOf = [&](const std::string& name) {
    std::string f = test::ReadFileBytes(dir / name);
    return f.substr(f.find("BODY") + 8);
  };
  settings->CreateIffPBM = 1;
  ASSERT_EQ(test::WritePicture(p, dir / "c.lbm"), kOk);
  EXPECT_EQ(test::ReadFileBytes(dir / "c.lbm").substr(8, 4), "PBM ");
  EXPECT_EQ(bodyOf("c.lbm"), Raw({0x81, 0x02, 0xFF, 0}));
  settings->CreateIffPBM = 0;
  ASSERT_EQ(test::WritePicture(p, dir / "c.lbm"), kOk);
  EXPECT_EQ(test::ReadFileBytes(dir / "c.lbm").substr(8, 4), "ILBM");
  // Plane p holds bit p of each pixel, leftmost pixel in bit 7.
  EXPECT_EQ(bodyOf("c.lbm"), Raw({0xA0, 0x60, 0x20, 0x20, 0x20, 0x20, 0x20, 0xA0}));

  // 24 planes: red's bits, then green's, then blue's.
  Picture deep = Picture::Blank(1, 1, 24);
  deep.SetPixel(0, 0, 0x8102FF);
  ASSERT_EQ(test::WritePicture(deep, dir / "d.iff"), kOk);
  std::string want = Raw({0x80, 0, 0, 0, 0, 0, 0, 0x80, 0, 0x80, 0, 0, 0, 0, 0, 0});
  want += std::string(8, '\x80');
  EXPECT_EQ(bodyOf("d.iff"), want);
  EXPECT_EQ(test::ReadFileBytes(dir / "d.iff").find("CMAP"), std::string::npos);

  // With compression on, each plane row is coded on its own.
  settings->CreateIffCompressed = 1;
  ASSERT_EQ(test::WritePicture(p, dir / "e.lbm"), kOk);
  EXPECT_EQ(bodyOf("e.lbm"), Raw({0, 0xA0, 0, 0x60, 0, 0x20, 0, 0x20, 0, 0x20, 0, 0x20, 0, 0x20,
                                  0, 0xA0}));
}

TEST(IffRead, OversizedColourMapSendsTheInfoWalkToAnAbsoluteOffset) {
  test::TempDir dir;
  // CMAP data starts at 20; 800 bytes send the info walk to offset 32, where a BMHD and a
  // BODY are planted. The reader skips the CMAP whole and reads the chunks after it.
  std::string map(800, '\x11');
  const std::string planted = Bmhd(2, 1, 1, 0) + "BODY" + Be(0, 4);
  map.replace(12, planted.size(), planted);
  const std::string file = Form("ILBM", "CMAP" + Be(800, 4) + map + Bmhd(2, 1, 1, 0) +
                                            Chunk("BODY", Raw({0x40})));
  test::Decoded d = DecodeBytes(dir, file);
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.info.width, 2u);
  EXPECT_EQ(d.info.palette[0], (Rgb{0, 0, 0}));  // one bit: black and white
  EXPECT_EQ(d.rows.at(0), (Bytes{0x40}));

  // A colour map that sends the walk back to itself is damage, not a loop.
  std::string loop = Form("ILBM", "CMAP" + Be(780, 4) + std::string(780, '\0'));
  EXPECT_EQ(DecodeBytes(dir, loop).infoCode, kCorruptedFile);
}

TEST(IffRead, PlanesFormsAndCodesCrossingTheLineEnd) {
  test::TempDir dir;
  // ByteRun1: a run of two passes a 1-byte line; its excess is not carried to the next row.
  // The masking byte is not looked at.
  test::Decoded d = DecodeBytes(
      dir, Form("ILBM", Bmhd(8, 2, 1, 1, 1) + Chunk("BODY", Raw({255, 0xAA, 0, 0x55}))));
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.rows.at(0), (Bytes{0xAA}));
  EXPECT_EQ(d.rows.at(1), (Bytes{0x55}));

  // Three planes make 3-bit pixels, held as nibbles; a CMAP fills the palette.
  d = DecodeBytes(dir, Form("ILBM", Bmhd(3, 1, 3, 0) + Chunk("CMAP", Raw({1, 2, 3, 4, 5, 6})) +
                                        Chunk("BODY", Raw({0xA0, 0x60, 0x80}))));
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.info.bits, 3u);
  EXPECT_EQ(d.info.palette[1], (Rgb{4, 5, 6}));
  EXPECT_EQ(d.rows.at(0), (Bytes{0x52, 0x30, 0, 0}));  // pixels 5, 2, 3

  // PBM: a byte a pixel as it stands.
  d = DecodeBytes(dir, Form("PBM ", Bmhd(3, 1, 8, 0) + Chunk("BODY", Raw({7, 8, 9}))));
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.rows.at(0), (Bytes{7, 8, 9}));

  // 24 planes.
  std::string planes = Raw({0x80, 0, 0, 0, 0, 0, 0, 0x80, 0, 0x80, 0, 0, 0, 0, 0, 0});
  planes += std::string(8, '\x80');
  d = DecodeBytes(dir, Form("ILBM", Bmhd(1, 1, 24, 0) + Chunk("BODY", planes)));
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.Pixel(0, 0), 0x8102FFu);
}

TEST(IffRead, DamagedFilesAndAbort) {
  test::TempDir dir;
  const std::string good = Form("ILBM", Bmhd(8, 2, 1, 0) + Chunk("BODY", Raw({1, 2})));
  EXPECT_EQ(DecodeBytes(dir, good).readCode, kOk);
  EXPECT_EQ(DecodeBytes(dir, "FOR").infoCode, kReadError);
  EXPECT_EQ(DecodeBytes(dir, "RIFF" + good.substr(4)).infoCode, kCorruptedFile);
  EXPECT_EQ(DecodeBytes(dir, good.substr(0, 30)).infoCode, kCorruptedFile);  // BMHD cut short
  EXPECT_EQ(DecodeBytes(dir, Form("ILBM", Bmhd(8, 2, 1, 0))).infoCode, kReadError);  // no BODY
  // A body the file cannot hold is refused before a store is made for it.
  EXPECT_EQ(DecodeBytes(dir, good.substr(0, good.size() - 1)).infoCode, kCorruptedFile);
  test::Decoded cut =
      DecodeBytes(dir, Form("ILBM", Bmhd(8, 2, 1, 1) + Chunk("BODY", Raw({0, 1, 0, 2, 5}))));
  EXPECT_EQ(cut.readCode, kOk);
  cut = DecodeBytes(dir, Form("ILBM", Bmhd(8, 2, 1, 1) + Chunk("BODY", Raw({0, 1, 1, 2}))));
  EXPECT_EQ(cut.infoCode, kOk);
  EXPECT_EQ(cut.readCode, kReadError);
  test::Decoded stopped = DecodeBytes(dir, good, 1);
  EXPECT_EQ(stopped.readCode, kCancelled);

  ImageInfo info;
  EXPECT_EQ(IffInfo(info, dir / "missing.iff", 0), kOpenError);
  EXPECT_EQ(IffRead(info, dir / "missing.iff"), kOpenError);
}

TEST(IffList, ChunkReport) {
  test::TempDir dir;
  ASSERT_EQ(test::WritePicture(Pattern(5, 3, 2), dir / "r.lbm"), kOk);
  std::vector<std::string> lines;
  ImageInfo info;
  ASSERT_EQ(IffList(info, dir / "r.lbm", lines), kOk);
  const size_t size = std::filesystem::file_size(dir / "r.lbm");
  const std::vector<std::string> want = {
      "FORM chunk, " + std::to_string(size - 8) + " bytes",
      "  Form type ILBM",
      "BMHD chunk, 20 bytes",
      "  Width 5", "  Height 3", "  X origin 0", "  Y origin 0", "  Planes 2", "  Masking 0",
      "  Compression 1", "  Pad 0", "  Transparent colour 0", "  X aspect 0", "  Y aspect 0",
      "  Page width 5", "  Page height 3",
      "CMAP chunk, 12 bytes",
      "  Colour map of 4 entries",
      "ANNO chunk, 18 bytes",
      "  Text: PXM/Windows 0.00",
      "BODY chunk, " + std::to_string(size - 94) + " bytes"};
  EXPECT_EQ(lines, want);
}

TEST(IffRoundTrip, EveryDepthBothFormsAndCodings) {
  test::TempDir dir;
  for (bool compressed : {false, true})
    for (bool pbm : {false, true})
      for (uint32_t bits : {1u, 2u, 4u, 5u, 8u, 24u})
        for (auto [w, h] : {std::pair{1u, 1}, {7u, 3}, {20u, 2}, {33u, 17}, {300u, 2}}) {
          SCOPED_TRACE(testing::Message() << w << "x" << h << "x" << bits << (pbm ? " PBM" : "")
                                          << (compressed ? " compressed" : ""));
          ScopedSettings settings;
          settings->CreateIffCompressed = compressed;
          settings->CreateIffPBM = pbm;
          Picture p = Pattern(w, h, bits, w + bits);
          if (w == 300) p = Picture::Blank(w, h, bits);  // long runs
          ASSERT_EQ(test::WritePicture(p, dir / "r.iff"), kOk);
          Picture q;
          ASSERT_EQ(test::ReadPicture(dir / "r.iff", q), kOk);
          ASSERT_EQ(q.bits, bits);
          for (int32_t y = 0; y < h; ++y)
            for (uint32_t x = 0; x < w; ++x) ASSERT_EQ(q.Pixel(x, y), p.Pixel(x, y)) << x << "," << y;
          if (bits > 1 && bits < 24) {
            for (uint32_t i = 0; i < (1u << bits); ++i) EXPECT_EQ(q.palette[i], p.palette[i]) << i;
          }
        }
}

}  // namespace
}  // namespace pxm
