#include "formats/tiff.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "config/settings.h"
#include "core/error_codes.h"
#include "core/file_io.h"
#include "formats/tiff_directory.h"
#include "support/decoded.h"
#include "support/picture_files.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

using test::Picture;
using Lines = std::vector<std::string>;

// A TIFF file built in the test: the header, the strip data at offset 8, values too long for
// their field after it, then the directory.
class TiffBuilder {
 public:
  explicit TiffBuilder(bool bigEndian) : be_(bigEndian) {}
  std::string N(uint32_t v, int bytes) const {
    return be_ ? test::Be(v, bytes) : test::Le(v, bytes);
  }
  TiffBuilder& Add(uint16_t tag, uint16_t type, uint32_t count, std::string value) {
    entries_.push_back({tag, type, count, std::move(value)});
    return *this;
  }
  TiffBuilder& Short(uint16_t tag, std::vector<uint32_t> v) {
    std::string s;
    for (uint32_t x : v) s += N(x, 2);
    return Add(tag, 3, static_cast<uint32_t>(v.size()), s);
  }
  TiffBuilder& Long(uint16_t tag, uint32_t v) { return Add(tag, 4, 1, N(v, 4)); }
  // A strip-based picture: width, length, bits, compression, photometric, one strip of `data`.
  TiffBuilder& Picture(uint32_t w, uint32_t h, uint32_t bits, uint32_t compression,
                       uint32_t photometric, std::string data, uint32_t stripAt = 8) {
    data_ = std::move(data);
    return Short(256, {w}).Short(257, {h}).Short(258, {bits}).Short(259, {compression})
        .Short(262, {photometric}).Long(273, stripAt)
        .Long(279, static_cast<uint32_t>(data_.size()));
  }
  std::string Bytes() const {
    std::string extra;
    const uint32_t extraAt = 8 + static_cast<uint32_t>(data_.size());
    std::string dir = N(static_cast<uint32_t>(entries_.size()), 2);
    for (const auto& e : entries_) {
      dir += N(e.tag, 2) + N(e.type, 2) + N(e.count, 4);
      if (e.value.size() <= 4) {
        dir += e.value + std::string(4 - e.value.size(), '\0');
      } else {
        dir += N(extraAt + static_cast<uint32_t>(extra.size()), 4);
        extra += e.value;
      }
    }
    const uint32_t ifd = extraAt + static_cast<uint32_t>(extra.size());
    return std::string(be_ ? "MM" : "II") + N(42, 2) + N(ifd, 4) + data_ + extra + dir + N(0, 4);
  }

 private:
  struct Entry {
    uint16_t tag, type;
    uint32_t count;
    std::string value;
  };
  bool be_;
  std::string data_;
  std::vector<Entry> entries_;
};

// Info and read into a picture; answers the two codes.
std::pair<int, int> Load(const std::string& path, const std::string& bytes, Picture& p,
                         ImageInfo* info = nullptr) {
  test::WriteFileBytes(path, bytes);
  ImageInfo i;
  const int read = test::ReadPicture(path, p, nullptr, &i);
  if (info) *info = i;
  return {TiffInfo(i, path, 0), read};
}

TEST(TiffInfo, FieldsPalettesAndDescriptions) {
  test::TempDir dir;
  // An 8-bit-style colour map and a 16-bit one give the same palette.
  for (uint32_t scale : {1u, 256u}) {
    std::vector<uint32_t> map(768, 0);
    for (uint32_t i = 0; i < 256; ++i) map[i] = i * scale, map[256 + i] = (255 - i) * scale;
    Picture p;
    ImageInfo info;
    const std::string file =
        TiffBuilder(false).Picture(3, 2, 8, 1, 3, std::string("\x00\x05\xff\x01\x02\x03", 6))
            .Short(320, map).Bytes();
    ASSERT_EQ(Load(dir / "a.tif", file, p, &info), std::make_pair(0, 0));
    EXPECT_EQ(info.description, "Uncompressed");
    EXPECT_EQ(info.bits, 8u);
    EXPECT_EQ(info.unpackedSize, 6u);
    EXPECT_EQ(p.Colour(1, 0), (Rgb{5, 250, 0}));
    EXPECT_EQ(p.Colour(2, 0), (Rgb{255, 0, 0}));
  }
  // Big-endian SHORT values sit in the high half of their field. Four bits: a 16-step ramp.
  Picture p;
  ImageInfo info;
  ASSERT_EQ(Load(dir / "b.tif", TiffBuilder(true).Picture(3, 1, 4, 1, 1, "\x1f\x80").Bytes(), p,
                 &info),
            std::make_pair(0, 0));
  EXPECT_EQ(info.width, 3u);
  EXPECT_EQ(p.Colour(0, 0), (Rgb{16, 16, 16}));
  EXPECT_EQ(p.Colour(1, 0), (Rgb{240, 240, 240}));
  EXPECT_EQ(p.Colour(2, 0), (Rgb{128, 128, 128}));

  const std::pair<uint32_t, const char*> names[] = {
      {1, "Uncompressed"}, {2, "Huffman"}, {3, "CCITT 3"}, {4, "CCITT 4"}, {5, "LZW"},
      {32773, "Run length compressed"}, {8, "Unknown compression type"}};
  for (auto [code, name] : names) {
    test::WriteFileBytes(dir / "c.tif", TiffBuilder(false).Picture(8, 1, 1, code, 0, "\x55").Bytes());
    ASSERT_EQ(TiffInfo(info, dir / "c.tif", 0), kOk) << code;
    EXPECT_EQ(info.description, name);
  }
}

TEST(TiffRead, PackBitsWith128EitherWayAndRunsAcrossRows) {
  test::TempDir dir;
  struct Case {
    uint32_t width, rows;
    std::string strip;
    std::vector<uint8_t> pixels;
  };
  const Case cases[] = {
      // 128 as a run of 129 copies: only that reading fills the 129 bytes.
      {129, 1, "\x80\x07", std::vector<uint8_t>(129, 7)},
      // 128 as the no-op the format means: only that reading gives exactly 4 bytes.
      {4, 1, std::string("\x80\x03\x01\x02\x03\x04", 6), {1, 2, 3, 4}},
      // A run of six over two rows of three.
      {3, 2, "\xfb\x09", {9, 9, 9, 9, 9, 9}},
  };
  for (const Case& c : cases) {
    Picture p;
    ASSERT_EQ(Load(dir / "p.tif", TiffBuilder(false).Picture(c.width, c.rows, 8, 32773, 1, c.strip).Bytes(), p),
              std::make_pair(0, 0));
    std::vector<uint8_t> got;
    for (uint32_t y = 0; y < c.rows; ++y)
      for (uint32_t x = 0; x < c.width; ++x) got.push_back(static_cast<uint8_t>(p.Pixel(x, static_cast<int32_t>(y))));
    EXPECT_EQ(got, c.pixels) << c.width;
  }
}

TEST(TiffRead, DamagedFilesAndFilesChangedSinceInfo) {
  test::TempDir dir;
  auto b = [] { return TiffBuilder(false); };
  const std::string good = b().Picture(4, 2, 8, 1, 1, "abcdefgh").Bytes();
  const auto end = static_cast<uint32_t>(good.size());
  const std::pair<std::string, std::pair<int, int>> cases[] = {
      {good, {kOk, kOk}},
      {"XX" + good.substr(2), {kCorruptedFile, kCorruptedFile}},
      {good.substr(0, good.size() - 20), {kCorruptedFile, kCorruptedFile}},  // directory cut
      {b().Short(256, {4}).Short(257, {1}).Bytes(), {kCorruptedFile, kCorruptedFile}},
      {b().Picture(4, 2, 8, 1, 1, "abcdefgh").Short(322, {16}).Bytes(),  // tiled
       {kCorruptedFile, kCorruptedFile}},
      // Forty thousand rows of forty thousand bytes cannot be in a few bytes of data.
      {b().Picture(40000, 40000, 8, 1, 1, "abcd").Bytes(), {kCorruptedFile, kCorruptedFile}},
      // A strip running past the end of the file, one starting past it, and PackBits data
      // that ends before the rows do.
      {b().Picture(4, 2, 8, 1, 1, "abcdefgh", end - 6).Bytes(), {kOk, kReadError}},
      {b().Picture(4, 2, 8, 1, 1, "abcdefgh", 9000).Bytes(), {kOk, kReadError}},
      {b().Picture(4, 2, 8, 32773, 1, "\x03" "abcd").Bytes(), {kOk, kReadError}},
  };
  for (const auto& [bytes, codes] : cases) {
    Picture p;
    EXPECT_EQ(Load(dir / "x.tif", bytes, p), codes) << &bytes - &cases[0].first;
  }
  ImageInfo info;
  test::WriteFileBytes(dir / "b.tif", b().Picture(2, 3, 8, 1, 1, "abcdef").Bytes());
  ASSERT_EQ(TiffInfo(info, dir / "b.tif", 0), kOk);
  info.putLine = [&](std::span<uint8_t>, int32_t) { return 0; };
  // A file that changed since info is not read into the store made for it.
  test::WriteFileBytes(dir / "b.tif", b().Picture(3, 3, 8, 1, 1, "abcdefghi").Bytes());
  EXPECT_EQ(TiffRead(info, dir / "b.tif"), kCorruptedFile);
}

TEST(TiffList, NamesAndValueTexts) {
  test::TempDir dir;
  ImageInfo info;
  std::vector<uint32_t> bits = {8, 8, 8};
  const std::string le = TiffBuilder(false)
                             .Short(256, {7})
                             .Short(258, bits)
                             .Add(305, 2, 13, std::string("Pixmill tests\0", 13))
                             .Add(271, 2, 3, std::string("ab\0", 3))
                             .Add(282, 5, 1, TiffBuilder(false).N(600, 4) + TiffBuilder(false).N(2, 4))
                             .Long(0xABCD, 5)
                             .Add(273, 4, 2, TiffBuilder(false).N(1, 4) + TiffBuilder(false).N(2, 4))
                             .Bytes();
  test::WriteFileBytes(dir / "l.tif", le);
  Lines lines;
  ASSERT_EQ(TiffList(info, dir / "l.tif", lines), kOk);
  // Values longer than their field sit after the 8-byte header: SHORTs at 8, then the text at
  // 14, the rational at 27 and the offsets at 35.
  EXPECT_EQ(lines, (Lines{"Number type\tIntel", "ImageWidth\t7", "BitsPerSample\tOffset = 8      Length = 3     ",
                          "Software\tPixmill tests", "Make\tab", "XResolution\t300", "?? (abcdH)\t5",
                          "StripOffsets\tOffset = 35     Length = 2     "}));

  ScopedSettings settings;
  settings->TiffAlternateDetails = 1;
  test::WriteFileBytes(dir / "m.tif", TiffBuilder(true).Short(256, {7}).Long(257, 9).Bytes());
  lines.clear();
  ASSERT_EQ(TiffList(info, dir / "m.tif", lines), kOk);
  EXPECT_EQ(lines, (Lines{"Number type\tMotorola", "ImageWidth\tTYPE: Short\tL:00000001\tO:00000007",
                          "ImageLength\tTYPE: Long\tL:00000001\tO:00000009"}));
  test::WriteFileBytes(dir / "n.tif", "MX" + le.substr(2));
  EXPECT_EQ(TiffList(info, dir / "n.tif", lines), kCorruptedFile);
}

uint32_t WrittenTag(const std::string& path, uint16_t tag) {
  InputFile file;
  TiffDirectory dir;
  if (!file.Open(path) || ReadTiffDirectory(file, dir) != kOk) return 0;
  return TiffTagValue(file, dir, tag, 0);
}

TEST(TiffWrite, GreyTablesAndGamma) {
  test::TempDir dir;
  Picture p = Picture::Blank(3, 1, 8);
  p.palette[0] = Rgb{40, 200, 200};
  p.palette[1] = Rgb{100, 0, 0};
  p.palette[2] = Rgb{255, 0, 0};
  for (uint32_t x = 0; x < 3; ++x) p.SetPixel(x, 0, x);
  struct Case {
    int colour, expand, contrast, gamma;
    std::vector<Rgb> want;
  };
  // Expanded grey: the first byte b gives index 59b/100 + 30b/100 + 11b/100 (40 -> 39, 100 ->
  // 100, 255 -> 254), then -25 + index × 256/206, cut to 0..255. Plain grey: luminance.
  // Gamma 2: 128 -> trunc(255 × (128/255)^2 + 0.5) = 64.
  const Case cases[] = {
      {0, 1, 25, 100, {{23, 23, 23}, {99, 99, 99}, {255, 255, 255}}},
      {0, 1, 65535, 100, {{39, 39, 39}, {100, 100, 100}, {254, 254, 254}}},
      {0, 0, 25, 100, {{152, 152, 152}, {30, 30, 30}, {76, 76, 76}}},
      {1, 1, 25, 200, {{6, 157, 157}, {39, 0, 0}, {255, 0, 0}}},
  };
  for (const Case& c : cases) {
    ScopedSettings settings;
    settings->CreateTifColour = c.colour;
    settings->CreateTifGreyExpand = c.expand;
    settings->TiffContrast = c.contrast;
    settings->TiffGamma = c.gamma;
    ASSERT_EQ(test::WritePicture(p, dir / "g.tif"), kOk);
    Picture q;
    ASSERT_EQ(test::ReadPicture(dir / "g.tif", q), kOk);
    EXPECT_EQ(test::Colours(q), c.want) << c.colour << c.expand << c.contrast << c.gamma;
  }
  EXPECT_EQ(WrittenTag(dir / "g.tif", 296), 2u);  // resolution in inches
}

}  // namespace
}  // namespace pxm
