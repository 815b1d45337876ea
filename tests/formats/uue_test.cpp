#include "formats/uue.h"

#include <gtest/gtest.h>

#include "config/settings.h"
#include "core/error_codes.h"
#include "core/platform.h"
#include "core/scripted_host.h"
#include "core/strings.h"
#include "formats/uue_decode.h"
#include "support/decoded.h"

namespace pxm {
namespace {

using Bytes = std::vector<uint8_t>;

std::string Joined(const std::vector<std::string>& lines) {
  std::string s;
  for (const std::string& l : lines) s += l + "\n";
  return s;
}

Bytes Decode(const std::string& line) {
  uint8_t out[kMaxUueLineBytes];
  return Bytes(out, out + DecodeUueLine(line, out));
}

// Decodes `text` as a file; the decoded bytes, or the error code as text.
std::string DecodeText(const test::TempDir& dir, const std::string& text, bool relaxed,
                       ScriptedHost&& host = ScriptedHost()) {
  test::WriteFileBytes(dir / "in.uue", text);
  UueDecoded decoded;
  if (int code = DecodeUueFile(dir / "in.uue", host, relaxed, decoded)) return std::to_string(code);
  std::string bytes = test::ReadFileBytes(decoded.decodedPath);
  platform::RemoveFile(decoded.decodedPath);
  return bytes;
}

ScriptedHost Answering(NextFileAnswer::Kind kind, const std::string& path = {}) {
  ScriptedHost host;
  host.nextFileAnswers.push_back({kind, path});
  return host;
}

TEST(UueDecode, DataLinesAndModes) {
  // "!" stands for 1 (as does "a"): a group 1, 1, 1, 1 makes 0x04, 0x10, 0x41; "M" counts 45.
  Bytes ones;
  for (int g = 0; g < 15; ++g) ones.insert(ones.end(), {0x04, 0x10, 0x41});
  EXPECT_EQ(Decode("M" + std::string(60, '!')), ones);
  EXPECT_EQ(Decode("#aaaa"), (Bytes{0x04, 0x10, 0x41}));
  EXPECT_EQ(Decode("#0V%T"), (Bytes{'C', 'a', 't'}));
  EXPECT_EQ(Decode("%0V%T"), (Bytes{'C', 'a', 't', 0, 0}));  // stripped spaces are zeros
  EXPECT_EQ(Decode("\"0V%T"), (Bytes{'C', 'a'}));

  test::TempDir dir;
  std::string payload(100, '\0');
  for (size_t i = 0; i < payload.size(); ++i) payload[i] = char(i * 7);
  const std::vector<std::string> lines = test::UuencodeLines(payload);
  const std::string text = "From: x\n\nbegin 644 d.bin\n" + lines[0] + "\nPath: news.example!x\n" +
                           lines[1] + "\r\n   \n" + lines[2] + "\n`\nend\n";
  // Relaxed: the news header and the line of spaces are not data lines by length and go.
  EXPECT_EQ(DecodeText(dir, text, true), payload);
  // Strict: the header is data ("P" counts 48); the spaces count 0 and end the data.
  const std::string strict = DecodeText(dir, text, false);
  ASSERT_EQ(strict.size(), 45u + 48u + 45u);
  EXPECT_EQ(strict.substr(93), payload.substr(45, 45));
  // Strict decoding carries on after a later begin line of any case, into the same file.
  EXPECT_EQ(DecodeText(dir, "begin 600 a\n#0V%T\n`\nnoise\nBEGIN 2\n#0V%T\nEND\n#0V%T\n", false),
            "CatCat");
  EXPECT_EQ(DecodeText(dir, "#0V%T\nend\n", true), "2");  // no begin line
  EXPECT_EQ(DecodeText(dir, "Begin 644 x\n#0V%T\nend\n", true), "2");
}

TEST(UueDecode, PartsThroughTheNextFileDialog) {
  test::TempDir dir;
  test::WriteFileBytes(dir / "part2", "Subject: part 2 of 2\n\n#0V%T\nend\n");
  const std::string first = "begin 644 cat.txt\n#0V%T\n";
  // The next part; Ok: complete; Cancel: 4 and no decoded file; a part that will not open: 1;
  // strict decoding never asks.
  EXPECT_EQ(DecodeText(dir, first, true, Answering(NextFileAnswer::Kind::kFile, dir / "part2")),
            "CatCat");
  EXPECT_EQ(DecodeText(dir, first, true), "Cat");
  EXPECT_EQ(DecodeText(dir, first, true, Answering(NextFileAnswer::Kind::kCancel)), "4");
  EXPECT_EQ(DecodeText(dir, first, true, Answering(NextFileAnswer::Kind::kFile, dir / "none")),
            "1");
  EXPECT_EQ(DecodeText(dir, first, false, Answering(NextFileAnswer::Kind::kCancel)), "Cat");
  EXPECT_TRUE(test::ListDirectory(platform::PrivateTempDirectory()).empty());
}

TEST(UueInfo, HandsTheDecodedFileToItsFormat) {
  ScopedSettings settings;
  test::TempDir dir;
  test::Picture p = test::Pattern(5, 3, 8);
  ASSERT_EQ(test::WritePicture(p, dir / "src.tga"), kOk);
  const std::string body =
      Joined(test::UuencodeLines(test::ReadFileBytes(dir / "src.tga"))) + "`\nend\n";
  // The name's directories are never used; the description has 12 characters of its name.
  for (auto [name, decoded, description] :
       {std::tuple{"picture.tga", "picture.tga", "PICTURE.TGA"},
        {"averylongname.tga", "averylongname.tga", "AVERYLONGNAM"},
        {"../../x.tga", "x.tga", "X.TGA"},
        {"/etc/y.tga", "y.tga", "Y.TGA"},
        {"C:\\PICS\\Z.TGA", "Z.TGA", "Z.TGA"}}) {
    test::Decoded d =
        test::DecodeBytes(dir, "a.uue", std::string("begin 644 ") + name + "\n" + body);
    ASSERT_EQ(d.readCode, kOk) << name;
    EXPECT_EQ(d.info.description, std::string("Original name ") + description);
    EXPECT_EQ(d.info.temporaryFile, platform::PrivateTempDirectory() + "/" + decoded);
    EXPECT_EQ(d.Pixel(4, 2), p.Pixel(4, 2));
    platform::RemoveFile(d.info.temporaryFile);
  }
  // Unknown, UUE-in-UUE and handler-less embedded formats; no decoded file outlives the refusal.
  for (auto [name, code] : {std::pair{"x.xyz", kUnsupportedFormat},
                            {"x.uue", kUnsupportedFormat},
                            {"x.avi", kUnsupportedFunction}}) {
    test::Decoded d =
        test::DecodeBytes(dir, "b.uue", std::string("begin 644 ") + name + "\n" + body);
    EXPECT_EQ(d.infoCode, code) << name;
    EXPECT_TRUE(test::ListDirectory(platform::PrivateTempDirectory()).empty());
  }
  ImageInfo info;
  EXPECT_EQ(FormatAt(FindFormatByExtension("UUE")).write(info, dir / "w.uue"),
            kUnsupportedFunction);
}

}  // namespace
}  // namespace pxm
