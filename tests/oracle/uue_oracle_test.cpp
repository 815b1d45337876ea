// Uuencoded pictures against sharutils' uuencode, whole and split over several files. Where
// Pixmill deliberately differs, the difference is checked: data lines ending in spaces (old
// encoders' zeros) lose them in relaxed decoding and are then skipped as too short; strict
// decoding pads them back.

#include <algorithm>

#include "config/settings.h"
#include "core/error_codes.h"
#include "core/names.h"
#include "core/scripted_host.h"
#include "core/strings.h"
#include "support/oracle.h"
#include "support/programs.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

TEST(UueOracle, UuencodedFilesReadAsTheFilesThemselves) {
  PXM_REQUIRE_ORACLE(test::HaveProgram("uuencode") && test::HaveProgram("split"), "sharutils");
  ScopedSettings settings;
  test::TempDir dir;
  test::Picture want, got;
  ImageInfo info;
  for (auto [ext, bits] :
       {std::pair{"tga", 8u}, {"ras", 24u}, {"fit", 8u}, {"lbm", 4u}, {"bmp", 1u}}) {
    const std::string name = std::string("Picture.") + ext;
    ASSERT_EQ(test::WritePicture(test::Pattern(37, 11, bits), dir / name), kOk);
    ASSERT_TRUE(test::RunIn(dir.path(), "uuencode " + name + " " + name + " >p.uue"));
    ASSERT_EQ(
        test::ReadPicture(dir / name, want) + test::ReadPicture(dir / "p.uue", got, nullptr, &info),
        kOk);
    EXPECT_EQ(got.rows, want.rows) << ext;
    EXPECT_EQ(info.description, "Original name PICTURE." + ToUpperAscii(ext));
  }
  // Three parts of 60 lines: the next-file dialog names the second and the third.
  test::Picture p = test::Pattern(64, 40, 24);
  ASSERT_EQ(test::WritePicture(p, dir / "big.tga"), kOk);
  ASSERT_TRUE(test::RunIn(
      dir.path(), "uuencode big.tga big.tga | split -l 60 - part. && mv part.aa first.uue"));
  ScriptedHost host;
  host.nextFileAnswers = {{NextFileAnswer::Kind::kFile, dir / "part.ab"},
                          {NextFileAnswer::Kind::kFile, dir / "part.ac"}};
  ASSERT_EQ(test::ReadPicture(dir / "first.uue", got, &host), kOk);
  EXPECT_EQ(got.rows, p.rows);
  EXPECT_EQ(host.nextFilePrompts, std::vector<std::string>(2, std::string(LoadMessage(176))));

  // Old encoders wrote a space where uuencode writes "`"; zeros end many lines in them.
  p = test::Picture::Blank(40, 6, 8);
  for (uint32_t x = 0; x < 40; x += 3) p.SetPixel(x, 2, x);
  ASSERT_EQ(test::WritePicture(p, dir / "z.tga"), kOk);
  ASSERT_TRUE(test::RunIn(dir.path(), "uuencode z.tga z.tga | tr '`' ' ' >s.uue"));
  settings->RelaxedUUE = 0;
  ASSERT_EQ(test::ReadPicture(dir / "s.uue", got), kOk);
  EXPECT_EQ(got.rows, p.rows);
  settings->RelaxedUUE = 1;
  EXPECT_NE(test::ReadPicture(dir / "s.uue", got), kOk);
}

}  // namespace
}  // namespace pxm
