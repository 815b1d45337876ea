#include "formats/uue.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "batch/convert.h"
#include "config/settings.h"
#include "core/error_codes.h"
#include "core/platform.h"
#include "core/scripted_host.h"
#include "core/strings.h"
#include "formats/format_table.h"
#include "formats/uue_decode.h"
#include "support/decoded.h"
#include "support/picture.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

using test::Pattern;
using test::Picture;
using Bytes = std::vector<uint8_t>;

std::string Joined(const std::vector<std::string>& lines) {
  std::string s;
  for (const std::string& l : lines) s += l + "\n";
  return s;
}

std::string Tga(const test::TempDir& dir, const Picture& p) {
  EXPECT_EQ(test::WritePicture(p, dir / "src.tga"), kOk);
  return test::ReadFileBytes(dir / "src.tga");
}

Bytes Decode(const std::string& line) {
  uint8_t out[kMaxUueLineBytes];
  return Bytes(out, out + DecodeUueLine(line, out));
}

int DecodeText(const test::TempDir& dir, const std::string& text, bool relaxed, std::string& bytes,
               ScriptedHost* host = nullptr) {
  test::WriteFileBytes(dir / "in.uue", text);
  ScriptedHost quiet;
  UueDecoded decoded;
  int code = DecodeUueFile(dir / "in.uue", host ? *host : quiet, relaxed, decoded);
  if (code == kOk) {
    bytes = test::ReadFileBytes(decoded.decodedPath);
    platform::RemoveFile(decoded.decodedPath);
  }
  return code;
}

TEST(UueDecode, DataLines) {
  // "M" counts 45 bytes in 60 characters; "#" three bytes in one group.
  // "!" stands for 1: each group 1, 1, 1, 1 makes 0x04, 0x10, 0x41.
  Bytes ones;
  for (int g = 0; g < 15; ++g) ones.insert(ones.end(), {0x04, 0x10, 0x41});
  EXPECT_EQ(Decode("M" + std::string(60, '!')), ones);
  EXPECT_EQ(Decode("#0V%T"), (Bytes{'C', 'a', 't'}));
  // Stripped trailing spaces decode as zeros; the last group gives only what the count asks.
  EXPECT_EQ(Decode("%0V%T"), (Bytes{'C', 'a', 't', 0, 0}));
  EXPECT_EQ(Decode("\"0V%T"), (Bytes{'C', 'a'}));
  // Every character stands for its code less 32, modulo 64: "a" is 1 as "!" is.
  EXPECT_EQ(Decode("#aaaa"), (Bytes{0x04, 0x10, 0x41}));
}

TEST(UueDecode, NewsHeadersBetweenDataLines) {
  test::TempDir dir;
  std::string payload(100, '\0');
  for (size_t i = 0; i < payload.size(); ++i) payload[i] = static_cast<char>(i * 7);
  std::vector<std::string> lines = test::UuencodeLines(payload);
  ASSERT_EQ(lines.size(), 3u);
  const std::string header = "Path: news.example.org!not-for-mail";
  const std::string text =
      "From: someone\n\nbegin 644 data.bin\n" + lines[0] + "\n" + header + "\n" + lines[1] +
      "\r\n   \n" + lines[2] + "\n`\nend\n";
  std::string bytes;
  // Relaxed: the header and the blank line do not have a data line's length and are skipped.
  ASSERT_EQ(DecodeText(dir, text, true, bytes), kOk);
  EXPECT_EQ(bytes, payload);
  // Strict: the header is data ("P" counts 48 bytes); the blank line of spaces counts 0 and
  // ends the data, so the last line is never reached.
  ASSERT_EQ(DecodeText(dir, text, false, bytes), kOk);
  ASSERT_EQ(bytes.size(), 45u + 48u + 45u);
  EXPECT_EQ(bytes.substr(0, 45), payload.substr(0, 45));
  EXPECT_EQ(bytes.substr(93), payload.substr(45, 45));
}

TEST(UueDecode, StrictModeAppendsEveryBeginSection) {
  test::TempDir dir;
  const std::string text = "begin 600 two.bin\n#0V%T\n`\nnoise\nBEGIN part 2\n#0V%T\nEND\n" +
                           std::string("#0V%T\n");
  std::string bytes;
  ASSERT_EQ(DecodeText(dir, text, false, bytes), kOk);
  EXPECT_EQ(bytes, "CatCat");
  // With no begin line there is nothing to decode.
  EXPECT_EQ(DecodeText(dir, "#0V%T\nend\n", true, bytes), kCorruptedFile);
  EXPECT_EQ(DecodeText(dir, "Begin 644 x\n#0V%T\nend\n", true, bytes), kCorruptedFile);
}

TEST(UueDecode, PartsThroughTheNextFileDialog) {
  test::TempDir dir;
  test::WriteFileBytes(dir / "part2", "Subject: part 2 of 2\n\n#0V%T\nend\n");
  std::string bytes;
  ScriptedHost host;
  host.nextFileAnswers.push_back({NextFileAnswer::Kind::kFile, dir / "part2"});
  ASSERT_EQ(DecodeText(dir, "begin 644 cat.txt\n#0V%T\n", true, bytes, &host), kOk);
  EXPECT_EQ(bytes, "CatCat");
  EXPECT_EQ(host.nextFilePrompts, std::vector<std::string>{std::string(LoadMessage(176))});

  // Ok ends the decoding as complete; Cancel gives 4 and leaves no decoded file; a part that
  // cannot be opened gives 1.
  ScriptedHost ok;
  ASSERT_EQ(DecodeText(dir, "begin 644 cat.txt\n#0V%T\n", true, bytes, &ok), kOk);
  EXPECT_EQ(bytes, "Cat");
  ScriptedHost cancel;
  cancel.nextFileAnswers.push_back({NextFileAnswer::Kind::kCancel, {}});
  EXPECT_EQ(DecodeText(dir, "begin 644 gone.txt\n#0V%T\n", true, bytes, &cancel), kCancelled);
  EXPECT_FALSE(platform::FileExists(platform::PrivateTempDirectory() + "/gone.txt"));
  ScriptedHost missing;
  missing.nextFileAnswers.push_back({NextFileAnswer::Kind::kFile, dir / "nothing"});
  EXPECT_EQ(DecodeText(dir, "begin 644 gone.txt\n#0V%T\n", true, bytes, &missing), kOpenError);
  // Strict decoding never asks.
  ScriptedHost strict;
  ASSERT_EQ(DecodeText(dir, "begin 644 cat.txt\n#0V%T\n", false, bytes, &strict), kOk);
  EXPECT_TRUE(strict.nextFilePrompts.empty());
}

TEST(UueInfo, HandsTheDecodedFileToItsFormat) {
  ScopedSettings settings;
  test::TempDir dir;
  Picture p = Pattern(5, 3, 8);
  const std::string body = Joined(test::UuencodeLines(Tga(dir, p))) + "`\nend\n";
  struct Case {
    std::string name, decodedName, description;
  };
  for (const Case& c : {Case{"picture.tga", "picture.tga", "Original name PICTURE.TGA"},
                        Case{"averylongname.tga", "averylongname.tga", "Original name AVERYLONGNAM"},
                        Case{"../../x.tga", "x.tga", "Original name X.TGA"},
                        Case{"/etc/y.tga", "y.tga", "Original name Y.TGA"},
                        Case{"C:\\PICS\\Z.TGA", "Z.TGA", "Original name Z.TGA"}}) {
    SCOPED_TRACE(c.name);
    test::WriteFileBytes(dir / "a.uue", "begin 644 " + c.name + "\n" + body);
    test::Decoded d = test::Decode(dir / "a.uue");
    ASSERT_EQ(d.readCode, kOk);
    EXPECT_EQ(d.info.description, c.description);
    EXPECT_EQ(d.info.temporaryFile, platform::PrivateTempDirectory() + "/" + c.decodedName);
    EXPECT_EQ(d.info.width, 5u);
    for (uint32_t x = 0; x < 5; ++x) EXPECT_EQ(d.Pixel(x, 2), p.Pixel(x, 2));
    platform::RemoveFile(d.info.temporaryFile);
  }

  // Unknown, UUE-in-UUE and unbuilt embedded formats; no decoded file outlives the refusal.
  for (auto [name, code] : {std::pair{"x.xyz", kUnsupportedFormat}, {"x.uue", kUnsupportedFormat},
                            {"x.pcx", kUnsupportedFunction}}) {
    SCOPED_TRACE(name);
    test::WriteFileBytes(dir / "b.uue", std::string("begin 644 ") + name + "\n" + body);
    test::Decoded d = test::Decode(dir / "b.uue");
    EXPECT_EQ(d.infoCode, code);
    EXPECT_TRUE(d.info.temporaryFile.empty());
    EXPECT_FALSE(platform::FileExists(platform::PrivateTempDirectory() + "/" + name));
  }
  ImageInfo info;
  EXPECT_EQ(UueInfo(info, dir / "missing.uue", 0), kOpenError);
  EXPECT_EQ(FormatAt(FindFormatByExtension("UUE")).write(info, dir / "w.uue"),
            kUnsupportedFunction);
}

TEST(UueConvert, ReadsThroughTheDriverAndLeavesNothingBehind) {
  ScopedSettings settings;
  test::TempDir dir;
  Picture p = Pattern(6, 4, 24);
  const std::vector<std::string> lines = test::UuencodeLines(Tga(dir, p));
  // Split in two parts; the first has no END line.
  const size_t half = lines.size() / 2;
  test::WriteFileBytes(dir / "pic.uue", "begin 644 pic.tga\n" +
                                            Joined({lines.begin(), lines.begin() + half}));
  test::WriteFileBytes(dir / "pic.002", Joined({lines.begin() + half, lines.end()}) + "end\n");
  ScriptedHost host;
  host.nextFileAnswers.push_back({NextFileAnswer::Kind::kFile, dir / "pic.002"});
  ASSERT_EQ(Convert(host, dir / "pic.uue", FindFormatByExtension("BMP")), kOk);
  Picture q;
  ASSERT_EQ(test::ReadPicture(dir / "pic.bmp", q), kOk);
  EXPECT_EQ(q.rows, p.rows);
  EXPECT_FALSE(platform::FileExists(platform::PrivateTempDirectory() + "/pic.tga"));
  // Writing UUE is refused after the picture was read.
  EXPECT_EQ(Convert(host, dir / "pic.bmp", FindFormatByExtension("UUE")), kUnsupportedFunction);
}

}  // namespace
}  // namespace pxm
