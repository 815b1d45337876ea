// A picture uuencoded by sharutils and split over three files, read through the next-file dialog.
// Whole files of other programs are in the oracle matrix; lines ending in spaces are D34 of the
// differences table.

#include "core/error_codes.h"
#include "core/scripted_host.h"
#include "core/strings.h"
#include "support/oracle.h"
#include "support/programs.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

TEST(UueOracle, PartsOfASplitFileThroughTheNextFileDialog) {
  PXM_REQUIRE_ORACLE(test::HaveProgram("uuencode") && test::HaveProgram("split"), "sharutils");
  test::TempDir dir;
  // Three parts of 60 lines: the next-file dialog names the second and the third.
  test::Picture p = test::Pattern(64, 40, 24), got;
  ASSERT_EQ(test::WritePicture(p, dir / "big.tga"), kOk);
  ASSERT_TRUE(test::RunIn(
      dir.path(), "uuencode big.tga big.tga | split -l 60 - part. && mv part.aa first.uue"));
  ScriptedHost host;
  host.nextFileAnswers = {{NextFileAnswer::Kind::kFile, dir / "part.ab"},
                          {NextFileAnswer::Kind::kFile, dir / "part.ac"}};
  ASSERT_EQ(test::ReadPicture(dir / "first.uue", got, &host), kOk);
  EXPECT_EQ(got.rows, p.rows);
  EXPECT_EQ(host.nextFilePrompts, std::vector<std::string>(2, std::string(LoadMessage(176))));
}

}  // namespace
}  // namespace pxm
