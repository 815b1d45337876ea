// Uuencoded pictures against sharutils' uuencode: a file of each format encoded by it reads as
// the file itself, also when the encoding is split over several files.
//
// Where Pixmill deliberately differs from the public format, the difference is checked:
// | Files                              | Pixmill                                | Why            |
// |------------------------------------|----------------------------------------|----------------|
// | data lines ending in spaces (the   | relaxed decoding strips the spaces and | kept behaviour |
// | old encoders' zero), relaxed mode  | then skips the line as too short;      |                |
// |                                    | strict decoding pads them back         |                |

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "config/settings.h"
#include "core/error_codes.h"
#include "core/names.h"
#include "core/scripted_host.h"
#include "support/oracle.h"
#include "support/programs.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

bool HaveSharutils() { return test::HaveProgram("uuencode") && test::HaveProgram("uudecode"); }

void Uuencode(const std::string& file, const std::string& name, const std::string& out) {
  ASSERT_EQ(test::Run("uuencode " + test::ShellQuote(file) + " " + test::ShellQuote(name) + " >" +
                      test::ShellQuote(out)),
            0);
}

TEST(UueOracle, EachFormatEncodedByUuencodeReadsAsTheFileItself) {
  PXM_REQUIRE_ORACLE(HaveSharutils(), "sharutils");
  ScopedSettings settings;
  test::TempDir dir;
  for (auto [ext, bits] : {std::pair{"tga", 8u}, {"ras", 24u}, {"fit", 8u}, {"lbm", 4u},
                           {"iff", 24u}, {"bmp", 1u}}) {
    SCOPED_TRACE(ext);
    const std::string name = std::string("Picture.") + ext;
    ASSERT_EQ(test::WritePicture(test::Pattern(37, 11, bits), dir / name), kOk);
    Uuencode(dir / name, name, dir / "p.uue");
    // The oracle itself gives the file back.
    std::string back;
    ASSERT_EQ(test::RunCapture("uudecode -o - " + test::ShellQuote(dir / "p.uue"), back), 0);
    ASSERT_EQ(back, test::ReadFileBytes(dir / name));

    test::Picture want, got;
    ImageInfo info;
    ASSERT_EQ(test::ReadPicture(dir / name, want), kOk);
    ASSERT_EQ(test::ReadPicture(dir / "p.uue", got, nullptr, &info), kOk);
    EXPECT_EQ(got.rows, want.rows);
    EXPECT_EQ(got.palette, want.palette);
    EXPECT_EQ(info.description, "Original name PICTURE." + ToUpperAscii(ext));
  }
}

TEST(UueOracle, SplitOverSeveralFiles) {
  PXM_REQUIRE_ORACLE(HaveSharutils() && test::HaveProgram("split"), "sharutils and split");
  ScopedSettings settings;
  test::TempDir dir;
  test::Picture p = test::Pattern(64, 40, 24);
  ASSERT_EQ(test::WritePicture(p, dir / "big.tga"), kOk);
  Uuencode(dir / "big.tga", "big.tga", dir / "big.uue");
  // About 170 lines, cut into parts of 60: the first keeps the begin line, the last the END.
  ASSERT_EQ(test::Run("cd " + test::ShellQuote(dir.path()) + " && split -l 60 big.uue part."), 0);
  const std::vector<std::string> names = test::ListDirectory(dir.path());
  std::vector<std::string> parts;
  for (const std::string& n : names)
    if (n.rfind("part.", 0) == 0) parts.push_back(dir / n);
  ASSERT_EQ(parts.size(), 3u);
  ScriptedHost host;
  for (size_t i = 1; i < parts.size(); ++i)
    host.nextFileAnswers.push_back({NextFileAnswer::Kind::kFile, parts[i]});
  // The parts are named as the reader expects none of them: the first is read as a UUE file.
  const std::string first = dir / "first.uue";
  test::WriteFileBytes(first, test::ReadFileBytes(parts[0]));
  test::Picture got;
  ASSERT_EQ(test::ReadPicture(first, got, &host), kOk);
  EXPECT_EQ(got.rows, p.rows);
  EXPECT_EQ(host.nextFilePrompts.size(), 2u);
}

TEST(UueOracle, OldStyleSpacesReadStrictlyButNotRelaxed) {
  PXM_REQUIRE_ORACLE(HaveSharutils(), "sharutils");
  test::TempDir dir;
  test::Picture p = test::Picture::Blank(40, 6, 8);  // zero bytes make lines that end in zeros
  for (uint32_t x = 0; x < 40; x += 3) p.SetPixel(x, 2, x);
  ASSERT_EQ(test::WritePicture(p, dir / "z.tga"), kOk);
  Uuencode(dir / "z.tga", "z.tga", dir / "z.uue");
  // Old encoders wrote a space where uuencode writes "`".
  std::string text = test::ReadFileBytes(dir / "z.uue");
  std::replace(text.begin(), text.end(), '`', ' ');
  test::WriteFileBytes(dir / "s.uue", text);
  ScopedSettings settings;
  settings->RelaxedUUE = 0;
  test::Picture got;
  ASSERT_EQ(test::ReadPicture(dir / "s.uue", got), kOk);
  EXPECT_EQ(got.rows, p.rows);
  settings->RelaxedUUE = 1;
  EXPECT_NE(test::ReadPicture(dir / "s.uue", got), kOk);
}

}  // namespace
}  // namespace pxm
