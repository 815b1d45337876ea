#include <gtest/gtest.h>

#include <filesystem>

#include "batch/operation.h"
#include "core/error_codes.h"
#include "core/host.h"
#include "formats/format_table.h"
#include "support/decoded.h"

namespace pxm {
namespace {

namespace fs = std::filesystem;

// Under a driver the picture is written to a temporary file: the palette file goes beside the
// name the picture takes, and a failed write leaves neither file nor any temporary behind.
TEST(CutWrite, ThePaletteFileTakesItsNameWithThePicture) {
  test::TempDir dir;
  const test::Picture p = test::Pattern(9, 5, 8);
  const FormatEntry& entry = FormatAt(FindFormatByExtension("CUT"));
  auto run = [&](int stopAt, const std::string& output) {
    ImageInfo info;
    info.width = p.width, info.depth = p.depth, info.bits = 8, info.palette = p.palette;
    int asked = 0;
    info.getLine = [&](std::span<uint8_t> row, int32_t y) {
      std::copy(p.rows[size_t(y)].begin(), p.rows[size_t(y)].end(), row.begin());
      return ++asked == stopAt ? 1 : 0;
    };
    return WriteThroughTemporary(SilentHost(), entry, info, output);
  };
  test::WriteFileBytes(dir / "old.PAL", "kept");
  EXPECT_EQ(run(3, dir / "old.cut"), kCancelled);
  EXPECT_EQ(test::ReadFileBytes(dir / "old.PAL"), "kept");
  EXPECT_EQ(std::distance(fs::directory_iterator(dir.path()), fs::directory_iterator()), 1);

  ASSERT_EQ(run(0, dir / "old.cut"), kOk);
  // The palette file already there, in its own case, is the one replaced.
  EXPECT_EQ(std::distance(fs::directory_iterator(dir.path()), fs::directory_iterator()), 2);
  test::Picture back;
  ASSERT_EQ(test::ReadPicture(dir / "old.cut", back), kOk);
  EXPECT_EQ(back.palette[p.Pixel(4, 2)], p.palette[p.Pixel(4, 2)]);
}

}  // namespace
}  // namespace pxm
