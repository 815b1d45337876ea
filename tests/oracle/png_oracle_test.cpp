// The whole PngSuite read as libpng decodes it, shown by Pixmill's rules (D15-D17 of the
// differences table), and its corrupt files answered with error codes. Files of other programs
// and Pixmill's files are in the oracle matrix.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "core/error_codes.h"
#include "oracle/libpng_reference.h"
#include "support/oracle.h"
#include "support/programs.h"

namespace pxm {
namespace {

namespace fs = std::filesystem;
using test::Picture;
using test::RgbImage;

TEST(PngOracle, PngSuiteReadsAsLibpngDecodesIt) {
  const std::string root = test::TestDataDir();
  if (root.empty() || !fs::is_directory(root + "/pngsuite")) GTEST_SKIP() << "no public test data";
  size_t compared = 0, refused = 0;
  for (const auto& e : fs::directory_iterator(root + "/pngsuite")) {
    if (e.path().extension() != ".png") continue;
    const std::string path = e.path().string();
    const std::string name = e.path().filename().string();
    SCOPED_TRACE(name);
    Picture p;
    const int code = test::ReadPicture(path, p);
    if (name[0] == 'x') {
      // The corrupt files: damaged signatures, colour types, depths and checksums are damage; a
      // file without image data says so.
      EXPECT_EQ(code, name == "xdtn0g01.png" ? kNoBitmap : kCorruptedFile);
      ++refused;
      continue;
    }
    RgbImage want;
    ASSERT_TRUE(oracle::LibpngDecode(path, want));
    ASSERT_EQ(code, kOk);
    EXPECT_TRUE(test::SameColours(p, want));
    ++compared;
  }
  EXPECT_GT(compared, 100u);
  EXPECT_GT(refused, 10u);
}

}  // namespace
}  // namespace pxm
