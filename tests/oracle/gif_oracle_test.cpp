// GIF files of several images with comments and extensions (from gifsicle) read image by image
// as ImageMagick decodes them, and the public GIF suites read as netpbm decodes them. Other
// programs' single pictures and Pixmill's files are in the oracle matrix.

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "config/settings.h"
#include "core/error_codes.h"
#include "formats/format_table.h"
#include "support/oracle.h"
#include "support/programs.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

namespace fs = std::filesystem;
using test::kMagick;
using test::Picture;
using test::RgbImage;

// One-bit pictures show black and white (D11): then only the split of the pixels must agree.
testing::AssertionResult ReadsImageAs(const std::string& path, const RgbImage& want,
                                      uint32_t image = 0) {
  Picture p;
  if (int code = test::ReadPicture(path, p, nullptr, nullptr, image))
    return testing::AssertionFailure() << "Pixmill answers " << code;
  if (p.bits == 1 && want.width == p.width) return test::SameSplit(test::Colours(p), want);
  return test::SameColours(p, want);
}

bool NetpbmDecode(const std::string& path, RgbImage& out, int image = 0) {
  return test::DecodeWith(
      "giftopnm --image=" + std::to_string(image + 1) + " " + test::ShellQuote(path), out);
}

TEST(GifOracle, GifsicleFilesWithSeveralImagesCommentsAndExtensions) {
  PXM_REQUIRE_ORACLE(test::HaveProgram("gifsicle"), "gifsicle");
  PXM_REQUIRE_ORACLE(test::HaveProgram(kMagick), kMagick);
  test::TempDir dir;
  // Three frames of their own sizes and colours: gifsicle gives the later ones local tables.
  std::string frames;
  for (uint32_t i = 0; i < 3; ++i) {
    const uint32_t width = 5 + 6 * i, height = 4 + i;
    const std::string name = dir / ("f" + std::to_string(i));
    test::WritePpm(name + ".ppm", test::Scene(width, height, 4 + 60 * i, i), width, height);
    ASSERT_EQ(test::Run(kMagick + " " + test::ShellQuote(name + ".ppm") + " " +
                        test::ShellQuote(name + ".gif")),
              0);
    frames += " " + test::ShellQuote(name + ".gif");
  }
  const std::string multi = dir / "multi.gif";
  ASSERT_EQ(test::Run("gifsicle --no-warnings -i --loopcount=3 --comment 'made by gifsicle'" +
                      frames + " >" + test::ShellQuote(multi)),
            0);
  ScopedSettings settings;
  settings->MultipleImageGIF = 1;
  for (int image = 0; image < 3; ++image) {
    SCOPED_TRACE(image);
    RgbImage want;
    ASSERT_TRUE(test::MagickDecode(multi, want, image));
    EXPECT_TRUE(ReadsImageAs(multi, want, static_cast<uint32_t>(image)));
  }
  ImageInfo info;
  Picture p;
  ASSERT_EQ(test::ReadPicture(multi, p, nullptr, &info), kOk);
  EXPECT_EQ(info.imageCount, 3u);
  std::string text;
  EXPECT_EQ(info.readComments(info, multi, text), kOk);
  EXPECT_EQ(text, "made by gifsicle");
  // The block report names what gifsicle put in.
  std::vector<std::string> lines;
  ASSERT_EQ(FormatAt(FindFormat(multi)).listImages(info, multi, lines), kOk);
  const std::multiset<std::string> seen(lines.begin(), lines.end());
  for (auto [line, count] : {std::pair{"IMAGE BLOCK", 3u},
                             {"Interlaced:\t\t YES", 3u},
                             {"COMMENT BLOCK", 1u},
                             {"GIF APPLICATION identification string: NETSCAPE", 1u}})
    EXPECT_EQ(seen.count(line), count) << line;
}

TEST(GifOracle, PublicSuitesReadAsNetpbmDecodesThem) {
  const std::string root = test::TestDataDir();
  if (root.empty() || !fs::is_directory(root + "/gif-pygif")) GTEST_SKIP() << "no public test data";
  PXM_REQUIRE_ORACLE(test::HaveProgram("giftopnm"), "netpbm");
  // Files netpbm refuses (images outside the screen, bad data) need only an answer; these are
  // read differently on purpose (D13 of the differences table).
  const std::set<std::string> differ = {"missing-pixels.gif"};
  size_t compared = 0;
  for (const char* suite : {"gif-pygif", "gif-giflib", "gif-image-rs", "gif-peterdn"})
    for (const auto& e : fs::recursive_directory_iterator(root + "/" + suite)) {
      if (e.path().extension() != ".gif") continue;
      const std::string path = e.path().string();
      SCOPED_TRACE(path);
      RgbImage want;
      Picture p;
      if (!NetpbmDecode(path, want) || differ.count(e.path().filename().string())) {
        test::ReadPicture(path, p);
        continue;
      }
      EXPECT_TRUE(ReadsImageAs(path, want));
      ++compared;
    }
  EXPECT_GT(compared, 50u);
}

}  // namespace
}  // namespace pxm
