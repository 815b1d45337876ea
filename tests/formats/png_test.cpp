#include "formats/png.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "config/settings.h"
#include "core/bytes.h"
#include "core/error_codes.h"
#include "core/strings.h"
#include "formats/comment_source.h"
#include "formats/png_codec.h"
#include "support/decoded.h"
#include "support/picture_files.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

using test::Be;
using test::Pattern;
using test::Picture;
using test::Raw;

const std::string kSignature = Raw({137, 80, 78, 71, 13, 10, 26, 10});

std::string Chunk(const std::string& type, const std::string& data) {
  const std::string body = type + data;
  const uint32_t crc =
      PngUpdateCrc(0, {reinterpret_cast<const uint8_t*>(body.data()), body.size()});
  return Be(static_cast<uint32_t>(data.size()), 4) + body + Be(crc, 4);
}

struct Parsed {
  std::vector<std::string> types;
  std::vector<std::string> data;
  bool crcsGood = true;
};

// Splits a file into its chunks and checks every CRC.
Parsed Chunks(const std::string& f) {
  Parsed p;
  for (size_t at = 8; at + 12 <= f.size();) {
    const uint32_t length = LoadBe32(reinterpret_cast<const uint8_t*>(&f[at]));
    p.types.push_back(f.substr(at + 4, 4));
    p.data.push_back(f.substr(at + 8, length));
    p.crcsGood &= Chunk(p.types.back(), p.data.back()) == f.substr(at, 12 + length);
    at += 12 + length;
  }
  return p;
}

TEST(PngWrite, ChunksOfEveryDepth) {
  test::TempDir dir;
  struct Case {
    uint32_t bits;
    int bitDepth, colourType;
    size_t paletteBytes;
  };
  for (const Case& c : {Case{1, 1, 3, 6},
                        {2, 4, 3, 48},
                        {3, 4, 3, 48},
                        {4, 4, 3, 48},
                        {5, 8, 3, 768},
                        {8, 8, 3, 768},
                        {24, 8, 2, 0}}) {
    SCOPED_TRACE(c.bits);
    ScopedSettings settings;
    settings->PngCompression = 0;
    Picture p = Pattern(7, 3, c.bits);
    ASSERT_EQ(test::WritePicture(p, dir / "a.png"), kOk);
    const std::string f = test::ReadFileBytes(dir / "a.png");
    EXPECT_EQ(f.substr(0, 8), kSignature);
    const Parsed chunks = Chunks(f);
    EXPECT_TRUE(chunks.crcsGood);
    std::vector<std::string> types = {"IHDR", "tEXt", "tEXt", "PLTE", "IDAT", "IEND"};
    if (c.paletteBytes == 0) types.erase(types.begin() + 3);
    ASSERT_EQ(chunks.types, types);
    EXPECT_EQ(chunks.data[0], Be(7, 4) + Be(3, 4) + Raw({c.bitDepth, c.colourType, 0, 0, 0}));
    EXPECT_EQ(chunks.data[1], "Comment" + std::string(1, '\0') + CreationNotice());
    EXPECT_EQ(chunks.data[2], "Comment" + std::string(1, '\0') + "Compression factor: 0");
    if (c.paletteBytes) {
      EXPECT_EQ(chunks.data[3].size(), c.paletteBytes);
      // One-bit pictures are written black and white whatever their palette.
      const Rgb last = c.bits == 1 ? Rgb{255, 255, 255} : p.palette[c.paletteBytes / 3 - 1];
      EXPECT_EQ(chunks.data[3].substr(c.paletteBytes - 3), Raw({last.red, last.green, last.blue}));
    }
    // The IDAT length is what the zlib stream takes: level 1 shows in its header.
    EXPECT_EQ(chunks.data[types.size() - 2].substr(0, 2), Raw({0x78, 0x01}));
    EXPECT_EQ(f.substr(f.size() - 12),
              Raw({0, 0, 0, 0, 'I', 'E', 'N', 'D', 0xAE, 0x42, 0x60, 0x82}));
  }
  // Level 12 compresses at 9; the text keeps the stored value. Without WriteFileComments no
  // text chunk at all.
  ScopedSettings settings;
  settings->PngCompression = 12;
  ASSERT_EQ(test::WritePicture(Pattern(5, 2, 24), dir / "b.png"), kOk);
  Parsed chunks = Chunks(test::ReadFileBytes(dir / "b.png"));
  EXPECT_EQ(chunks.data[2], "Comment" + std::string(1, '\0') + "Compression factor: 12");
  EXPECT_EQ(chunks.data[3].substr(0, 2), Raw({0x78, 0xDA}));
  settings->WriteFileComments = 0;
  ASSERT_EQ(test::WritePicture(Pattern(5, 2, 24), dir / "b.png"), kOk);
  EXPECT_EQ(Chunks(test::ReadFileBytes(dir / "b.png")).types,
            (std::vector<std::string>{"IHDR", "IDAT", "IEND"}));
}

TEST(PngWrite, FilteredRowsCompressPhotographsBetter) {
  // A smooth gradient with grain: filtered rows take fewer bytes than the same rows unfiltered.
  test::TempDir dir;
  auto compressed = [&](int bytesPerPixel) {
    OutputFile out;
    EXPECT_TRUE(out.Create(dir / "z"));
    PngDeflate deflate;
    EXPECT_TRUE(PngBeginDeflate(deflate, out, 6, 3 * 200, bytesPerPixel));
    std::vector<uint8_t> row(600);
    for (uint32_t y = 0; y < 100; ++y) {
      for (uint32_t x = 0; x < 600; ++x)
        row[x] = static_cast<uint8_t>(x / 3 + y + ((x * 7 + y * 13) % 5));
      EXPECT_TRUE(PngDeflateData(deflate, row));
    }
    EXPECT_TRUE(PngEndDeflate(deflate));
    return deflate.Written();
  };
  EXPECT_LT(compressed(3), compressed(0) * 3 / 4);
}

TEST(PngInfo, RampsDepthsAndPalettes) {
  test::TempDir dir;
  auto file = [](int depth, int colourType, int interlace, const std::string& more) {
    return kSignature +
           Chunk("IHDR", Be(13, 4) + Be(3, 4) + Raw({depth, colourType, 0, 0, interlace})) + more +
           Chunk("IDAT", "") + Chunk("IEND", "");
  };
  struct Case {
    int depth, colourType;
    uint32_t bits;
    size_t entry;
    uint8_t grey;  // the ramp's value at `entry`
  };
  for (const Case& c : {Case{8, 0, 8, 255, 254},
                        {4, 0, 4, 15, 239},
                        {1, 0, 1, 1, 127},
                        {16, 0, 16, 255, 254},
                        {8, 4, 8, 128, 127},
                        {16, 4, 8, 255, 254}}) {
    SCOPED_TRACE(testing::Message() << c.depth << " " << c.colourType);
    test::WriteFileBytes(dir / "a.png", file(c.depth, c.colourType, 1, ""));
    ImageInfo info;
    ASSERT_EQ(PngInfo(info, dir / "a.png", 0), kOk);
    EXPECT_EQ(info.bits, c.bits);
    EXPECT_EQ(info.palette[c.entry], (Rgb{c.grey, c.grey, c.grey}));
    EXPECT_EQ(info.description, "Adam 7 interace");
    EXPECT_EQ(info.unpackedSize, 16u * 3u);
  }
  // PLTE of 900 bytes fills the 768-byte palette; the walk goes on to the next chunk.
  std::string plte;
  for (int i = 0; i < 300; ++i) plte += Raw({i % 256, 1, 2});
  test::WriteFileBytes(dir / "p.png",
                       file(8, 3, 0, Chunk("PLTE", plte) + Chunk("PLTE", Raw({9, 9, 9}))));
  ImageInfo info;
  ASSERT_EQ(PngInfo(info, dir / "p.png", 0), kOk);
  EXPECT_EQ(info.description, "No interlace");
  EXPECT_EQ(info.palette[0], (Rgb{9, 9, 9}));
  EXPECT_EQ(info.palette[255], (Rgb{255, 1, 2}));
  test::WriteFileBytes(dir / "c.png", file(8, 2, 0, ""));
  ASSERT_EQ(PngInfo(info, dir / "c.png", 0), kOk);
  EXPECT_EQ(info.bits, 24u);
  // Damage: a bad signature, a file cut inside a chunk head or before IEND, no IHDR, IHDR
  // after another chunk or of another length, a bit depth the colour type does not have.
  const std::string header = Be(13, 4) + Be(3, 4) + Raw({8, 0, 0, 0, 0});
  for (auto [bytes, code] :
       {std::pair{"x" + file(8, 0, 0, "").substr(1), kCorruptedFile},
        {kSignature.substr(0, 5), kReadError},
        {file(8, 0, 0, "").substr(0, 40), kReadError},
        {kSignature + Chunk("IEND", ""), kCorruptedFile},
        {kSignature + Chunk("gAMA", Be(1, 4)) + Chunk("IHDR", header) + Chunk("IEND", ""),
         kCorruptedFile},
        {kSignature + Chunk("IHDR", header.substr(0, 12)) + Chunk("IEND", ""), kCorruptedFile},
        {file(3, 0, 0, ""), kCorruptedFile},
        {file(16, 3, 0, ""), kCorruptedFile}}) {
    test::WriteFileBytes(dir / "d.png", bytes);
    EXPECT_EQ(PngInfo(info, dir / "d.png", 0), code);
  }
}

TEST(PngList, ChunkReportWithCrcs) {
  test::TempDir dir;
  ScopedSettings settings;
  settings->PngDetailCrc = 1;
  settings->WriteFileComments = 0;
  const std::string f =
      kSignature + Chunk("IHDR", Be(2000, 4) + Be(1000, 4) + Raw({8, 6, 0, 0, 1})) +
      Chunk("gAMA", Be(45455, 4)) + Chunk("pHYs", Be(3937, 4) + Be(3937, 4) + Raw({1})) +
      Chunk("tIME", Be(2001, 2) + Raw({2, 3, 13, 5, 9})) + Chunk("abCd", "xy") +
      Chunk("tEXt", std::string("Title\0Hi", 8)) + Chunk("IEND", "");
  test::WriteFileBytes(dir / "a.png", f);
  std::vector<std::string> lines;
  ImageInfo info;
  ASSERT_EQ(PngList(info, dir / "a.png", lines), kOk);
  auto crc = [&](const std::string& chunk) {
    const std::string c = chunk.substr(chunk.size() - 4);
    return FormatText(
        "Calculated CRC: %.8lXH -- Block CRC: %.8lXH",
        static_cast<unsigned long>(LoadBe32(reinterpret_cast<const uint8_t*>(c.data()))),
        static_cast<unsigned long>(LoadBe32(reinterpret_cast<const uint8_t*>(c.data()))));
  };
  // The report a line a "\n", "=" standing for the 49 dashes under each heading.
  const std::string want =
      "CHUNK IHDR -- SIZE 13 BYTES\n=\nHEADER\nWidth: 2000\nDepth: 1000\n"
      "Bits per sample: 8\nPalette: NO\nTrue colour: YES\nAlpha channels: YES\n"
      "Interlace type: ADAM 7\n" +
      crc(f.substr(8, 25)) + "\n\nCHUNK gAMA -- SIZE 4 BYTES\n=\nGAMMA\nGamma: 0.45455\n" +
      crc(f.substr(33, 16)) +
      "\n\nCHUNK pHYs -- SIZE 9 BYTES\n=\nPHYSICAL PIXEL DIMENSIONS\n"
      "3937 x 3937 pixels\n20.0 x 10.0 inches\n" +
      crc(f.substr(49, 21)) +
      "\n\nCHUNK tIME -- SIZE 7 BYTES\n=\nLAST IMAGE MODIFICATION TIME\n"
      "1:05:09pm February 3, 2001\n" +
      crc(f.substr(70, 19)) + "\n\nCHUNK abCd -- SIZE 2 BYTES\n=\nUNKNOWN OR PRIVATE CHUNK\n" +
      crc(f.substr(89, 14)) + "\n\nCHUNK tEXt -- SIZE 8 BYTES\n=\nTEXT\nTitle: Hi\n" +
      crc(f.substr(103, 20)) + "\n\nCHUNK IEND -- SIZE 0 BYTES\n=\nEND OF FILE\n" +
      crc(f.substr(123, 12));
  EXPECT_EQ(test::JoinLines(lines), test::Rules(want));
  std::string text;
  EXPECT_EQ(PngReadComments(info, dir / "a.png", text), kOk);
  EXPECT_EQ(text, "Title: Hi");
}

}  // namespace
}  // namespace pxm
