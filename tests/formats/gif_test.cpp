#include "formats/gif.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

#include "config/settings.h"
#include "core/error_codes.h"
#include "core/scripted_host.h"
#include "formats/comment_source.h"
#include "formats/gif_lzw.h"
#include "support/decoded.h"
#include "support/picture_files.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

using test::Bytes;
using test::Le;
using test::Pattern;
using test::Picture;
using test::Raw;

std::string Table(std::initializer_list<Rgb> colours) {
  std::string s;
  for (const Rgb& c : colours) s += Raw({c.red, c.green, c.blue});
  return s;
}

std::string Header(const char* signature, uint32_t width, uint32_t height, int flags,
                   int background, const std::string& table = "") {
  return std::string(signature) + Le(width, 2) + Le(height, 2) + Raw({flags, background, 0}) +
         table;
}

// Sub-blocks of at most 255 bytes and the terminator.
std::string Blocks(const std::string& payload) {
  std::string s;
  for (size_t at = 0; at < payload.size(); at += 255) {
    const size_t n = std::min<size_t>(255, payload.size() - at);
    s += static_cast<char>(n) + payload.substr(at, n);
  }
  return s + '\0';
}

// An image block: descriptor, local table, code size and LZW data of `pixels` (row by row).
std::string Image(uint32_t width, uint32_t height, int flags, const std::string& local,
                  int codeSize, const Bytes& pixels) {
  GifLzwEncoder encoder(codeSize);
  Bytes code;
  encoder.Add(pixels.data(), pixels.size(), code);
  encoder.Finish(code);
  return Raw({0x2C}) + Le(0, 4) + Le(width, 2) + Le(height, 2) + Raw({flags}) + local +
         Raw({codeSize}) + Blocks(std::string(code.begin(), code.end()));
}

Bytes Indices(uint32_t n, uint32_t colours, uint32_t seed) {
  Bytes v;
  for (uint32_t i = 0; i < n; ++i) v.push_back(static_cast<uint8_t>((i * 7 + seed) % colours));
  return v;
}

TEST(GifWrite, HeaderDescriptorAndTableForEveryDepth) {
  test::TempDir dir;
  const int flags[] = {0x80, 0x91, 0xA2, 0xB3, 0xC4, 0xD5, 0xE6, 0xF7};  // by bits, from 1
  for (bool interlaced : {false, true})
    for (uint32_t bits = 1; bits <= 8; ++bits) {
      SCOPED_TRACE(testing::Message() << bits << " bits" << (interlaced ? ", interlaced" : ""));
      ScopedSettings settings;
      settings->WriteGIFInterlaced = interlaced;
      settings->WriteFileComments = 0;
      Picture p = Pattern(5, 3, bits, bits);
      p.palette[(1u << bits) - 1] = Rgb{1, 2, 3};
      ASSERT_EQ(test::WritePicture(p, dir / "a.gif"), kOk);
      const std::string f = test::ReadFileBytes(dir / "a.gif");
      const size_t table = size_t{3} << bits;
      EXPECT_EQ(f.substr(0, 13), "GIF89a" + Le(5, 2) + Le(3, 2) + Raw({flags[bits - 1], 0, 0}));
      EXPECT_EQ(f.substr(13 + table - 3, 3), Raw({1, 2, 3}));  // the table's last entry
      // The descriptor's low bits say bits - 1 though no local table follows; then the code size.
      EXPECT_EQ(f.substr(13 + table, 11),
                Raw({0x2C}) + Le(0, 4) + Le(5, 2) + Le(3, 2) +
                    Raw({static_cast<int>(bits - 1 + (interlaced ? 0x40 : 0)),
                         static_cast<int>(std::max(bits, 2u))}));
      EXPECT_EQ(f.substr(f.size() - 2), Raw({0, 0x3B}));
    }
}

TEST(GifWrite, CommentSubBlocksAndWhereTheTextComesFrom) {
  test::TempDir dir;
  const Picture p = Pattern(3, 2, 8);
  // The file's comment extension, or "" when it has none.
  auto comment = [&](ScriptedHost* host) {
    EXPECT_EQ(test::WritePicture(p, dir / "a.gif", -1, host), kOk);
    const std::string f = test::ReadFileBytes(dir / "a.gif");
    const size_t at = f.find("\x21\xFE");
    return at == std::string::npos ? "" : f.substr(at);
  };
  std::string text;
  for (int i = 0; i < 300; ++i) text += static_cast<char>('a' + i % 26);
  ScopedSettings settings;
  settings->PromptForGifComments = 1;
  ScriptedHost host;
  host.commentAnswer = text;
  EXPECT_EQ(comment(&host), Raw({0x21, 0xFE, 255}) + text.substr(0, 255) + Raw({45}) +
                                text.substr(255) + Raw({0, 0x3B}));
  EXPECT_EQ(host.commentPrompts, std::vector<std::string>{""});
  host.commentAnswer = text.substr(0, 255);
  EXPECT_EQ(comment(&host), Raw({0x21, 0xFE, 255}) + text.substr(0, 255) + Raw({0, 0x3B}));
  host.commentAnswer = "";  // an empty or cancelled dialog: no comment
  EXPECT_EQ(comment(&host), "");
  // GIF87a never carries one, and asks for none.
  settings->CreateGif89 = 0;
  host.commentPrompts.clear();
  EXPECT_EQ(comment(&host), "");
  EXPECT_TRUE(host.commentPrompts.empty());
  // GifCommentPath fills the dialog from its file, up to a zero byte.
  settings->CreateGif89 = 1;
  test::WriteFileBytes(dir / "note.txt", std::string("from file\0rest", 14));
  settings->GifCommentPath = dir / "note.txt";
  host.commentAnswer.reset();
  EXPECT_EQ(comment(&host), Raw({0x21, 0xFE, 9}) + "from file" + Raw({0, 0x3B}));
  EXPECT_EQ(host.commentPrompts.back(), "from file");
  // Otherwise the creation notice with the version filled in.
  ScopedSettings defaults;
  const std::string notice = CreationNotice();
  EXPECT_EQ(notice.find("*.**"), std::string::npos);
  EXPECT_NE(notice.find("Pixmill for Windows version 1.1t\r"), std::string::npos);
  EXPECT_EQ(comment(nullptr).substr(2, 256), Raw({255}) + notice.substr(0, 255));
  defaults->WriteFileComments = 0;
  EXPECT_EQ(comment(nullptr), "");
}

TEST(GifRead, HeaderPlacesPalettesAndImageChoice) {
  test::TempDir dir;
  const Rgb red{255, 0, 0}, blue{0, 0, 255};
  const Bytes pixels = Indices(12, 2, 1);
  const std::string plain =
      Header("GIF89a", 4, 3, 0x80, 1, Table({red, blue})) + Image(4, 3, 0, "", 2, pixels) + ";";
  // Behind a MacBinary header: read as if it were not there.
  test::WriteFileBytes(dir / "mac.gif", std::string(128, 'M') + plain);
  test::Decoded d = test::DecodeFile(dir / "mac.gif");
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(std::tuple(d.info.width, d.info.bits, d.info.background, d.info.unpackedSize),
            std::tuple(4u, 1u, 1u, 3u));
  EXPECT_EQ(d.info.description, "GIF89a");
  // A two-colour table of red and blue shows black and white.
  EXPECT_EQ(d.info.palette[0], (Rgb{0, 0, 0}));
  EXPECT_EQ(d.info.palette[1], (Rgb{255, 255, 255}));
  for (uint32_t i = 0; i < 12; ++i)
    EXPECT_EQ(d.Pixel(i % 4, static_cast<int32_t>(i / 4)), pixels[i]);

  // Three images; with MultipleImageGIF on, index 2 takes the third descriptor's size and
  // local table. Stray bytes between blocks are passed over.
  const Rgb c0{1, 2, 3}, c1{4, 5, 6}, c2{7, 8, 9}, c3{10, 11, 12};
  const std::string three = Header("GIF89a", 10, 10, 0x80, 0, Table({red, blue})) +
                            Image(2, 2, 0, "", 2, Indices(4, 2, 0)) + "\x3B\x55" +
                            Image(3, 1, 0x80, Table({blue, red}), 2, Indices(3, 2, 1)) +
                            Raw({0x21, 0xF9, 4, 0, 0, 0, 0, 0}) +
                            Image(5, 2, 0x81, Table({c0, c1, c2, c3}), 2, Indices(10, 4, 2)) + ";";
  test::WriteFileBytes(dir / "three.gif", three);
  ScopedSettings settings;
  settings->MultipleImageGIF = 1;
  d = test::DecodeFile(dir / "three.gif", 0, 2);
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(std::tuple(d.info.width, d.info.depth, d.info.bits, d.info.imageCount, d.info.flags),
            std::tuple(5u, 2, 2u, 3u, 0x81u));
  EXPECT_EQ(d.info.palette[3], c3);
  EXPECT_EQ(d.rows[1], (Bytes{0x10, 0x32, 0x10, 0}));  // indices 1 0 3 2 1, four bits each
  // An image on the global table after one with a local table shows the local table.
  test::WriteFileBytes(dir / "after.gif",
                       Header("GIF89a", 2, 1, 0x81, 0, Table({red, blue, red, blue})) +
                           Image(2, 1, 0x81, Table({c0, c1, c2, c3}), 2, Indices(2, 4, 0)) +
                           Image(2, 1, 0, "", 2, Indices(2, 4, 3)) + ";");
  d = test::DecodeFile(dir / "after.gif", 0, 1);
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.info.palette[3], c3);
  settings->MultipleImageGIF = 0;
  d = test::DecodeFile(dir / "three.gif", 0, 2);
  EXPECT_EQ(std::tuple(d.readCode, d.info.width, d.info.imageCount), std::tuple(kOk, 2u, 0u));
}

TEST(GifRead, DamagedFilesAndTheirCodes) {
  test::TempDir dir;
  const std::string head = Header("GIF89a", 4, 3, 0x80, 0, Table({{0, 0, 0}, {9, 9, 9}}));
  const std::string image = Image(4, 3, 0, "", 2, Indices(12, 2, 0));
  struct Case {
    const char* what;
    std::string file;
    int infoCode;
    int readCode;
    size_t rows;
  };
  std::string badCode = image;
  badCode[12] = static_cast<char>(0xFF);  // the first code is then 7: a string, not a pixel
  const Case cases[] = {
      {"good", head + image + ";", kOk, kOk, 3},
      {"no image", head + ";", kCorruptedFile, kOk, 0},
      {"a zero ends the scan", head + '\0' + image, kCorruptedFile, kOk, 0},
      {"not a GIF", "GIX" + head.substr(3) + image, kCorruptedFile, kCorruptedFile, 0},
      {"short global table", head.substr(0, 15), kReadError, kReadError, 0},
      {"short descriptor", head + image.substr(0, 6), kReadError, kReadError, 0},
      {"no code size", head + image.substr(0, 10), kCorruptedFile, kCorruptedFile, 0},
      {"code size 12", head + image.substr(0, 10) + Raw({12, 1, 0, 0}), kOk, kReadError, 0},
      {"bad code", head + badCode, kOk, kReadError, 1},
      {"data cut short", head + image.substr(0, 13), kOk, kReadError, 1},
  };
  for (const Case& c : cases) {
    test::WriteFileBytes(dir / "a.gif", c.file);
    ImageInfo info;
    EXPECT_EQ(GifInfo(info, dir / "a.gif", 0), c.infoCode) << c.what;
    info.width = 4;
    info.depth = 3;
    size_t rows = 0;
    info.putLine = [&](std::span<uint8_t>, int32_t) { return ++rows, 0; };
    EXPECT_EQ(GifRead(info, dir / "a.gif"), c.readCode) << c.what;
    EXPECT_EQ(rows, c.rows) << c.what;
  }
  ImageInfo info;
  info.width = info.depth = 4;
  info.bits = 24;
  EXPECT_EQ(GifWrite(info, dir / "w.gif"), kUnsuitableImage);
}

TEST(GifList, BlockReportAndComments) {
  test::TempDir dir;
  const std::string file =
      std::string(128, '\0').replace(1, 6, "\x05Snaps") +  // a MacBinary header named "Snaps"
      Header("GIF89a", 3, 2, 0x80, 1, Table({{0, 0, 0}, {1, 1, 1}})) +
      Raw({0x21, 0xF9, 4, 0x0B, 0xF4, 0x01, 5, 0}) +                    // dispose to background
      Raw({0x21, 0xFE}) + Blocks("Hi\r\x01there") +                     // comment
      Raw({0x21, 0xFF, 11}) + "NETSCAPE2.0" + Blocks("\x01\x00\x00") +  // application
      Raw({0x21, 0x01, 12}) + Le(1, 2) + Le(2, 2) + Le(30, 2) + Le(8, 2) + Raw({6, 8, 1, 0}) +
      Blocks("text") +                    // plain text
      Raw({0x21, 0x99}) + Blocks("zz") +  // unknown
      Image(3, 2, 0, "", 2, Indices(6, 2, 0)) +
      Image(3, 2, 0xC1, Table({{}, {}, {}, {}}), 2, Indices(6, 4, 0)).substr(0, 20);
  test::WriteFileBytes(dir / "a.gif", file);
  ImageInfo info;
  std::vector<std::string> lines;
  ASSERT_EQ(GifList(info, dir / "a.gif", lines), kOk);
  // The report a line a "\n", "=" standing for the 49 dashes under each heading.
  const std::string want =
      "SCREEN DESCRIPTOR\n=\nMacintosh name:\t\t Snaps\nScreen dimensions:\t 3 by 2\n"
      "Screen bits: \t\t 1\nBackground colour:\t 1\nGlobal palette:\t\t YES\n\n"
      "CONTROL BLOCK\n=\nThis block requires 4 bytes\nDispose to background colour\n"
      "User input required - delay for 5 seconds\nTransparent colour: 5\n\nCOMMENT BLOCK\n"
      "=\nHi\nthere\n\nGIF APPLICATION BLOCK\n=\n"
      "GIF APPLICATION identification string: NETSCAPE\n\nPLAIN TEXT BLOCK\n=\n"
      "This block requires 12 bytes\nText location at (1,2)\nGrid dimensions are 30 by 8\n"
      "Cell dimensions are 6 by 8\nForegound colour is 1\nBackground colour is 0\n\n"
      "Skipping unknown extension type 99\n\nIMAGE BLOCK\n=\nImage dimensions:\t 3 by 2\n"
      "Image bits:\t\t 1\nLocal palette:\t\t NO\nInterlaced:\t\t NO\n\nIMAGE BLOCK\n=\n"
      "Image dimensions:\t 3 by 2\nImage bits:\t\t 2\nLocal palette:\t\t YES\n"
      "Interlaced:\t\t YES\n=\nUnexpected end of image";
  EXPECT_EQ(test::JoinLines(lines), test::Rules(want));

  std::string text;
  EXPECT_EQ(GifReadComments(info, dir / "a.gif", text), kOk);
  EXPECT_EQ(text, std::string("Hi\r\x01there") + "\r" + "text");
  // Long text lines break at 56 characters and the list keeps 55 of them; 128 lines at most.
  std::string many = Header("GIF89a", 1, 1, 0, 0);
  for (int i = 0; i < 40; ++i)
    many += Raw({0x21, 0xFE}) + Blocks(std::string(60, static_cast<char>('a' + i % 26)));
  test::WriteFileBytes(dir / "b.gif", many);
  lines.clear();
  ASSERT_EQ(GifList(info, dir / "b.gif", lines), kOk);
  ASSERT_EQ(lines.size(), 128u);
  EXPECT_EQ(lines[9], std::string(55, 'a'));
  EXPECT_EQ(lines[10], "aaaa");
}

}  // namespace
}  // namespace pxm
