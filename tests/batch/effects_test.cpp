#include "batch/effects.h"

#include <gtest/gtest.h>

#include <array>

#include "config/settings.h"
#include "core/error_codes.h"
#include "core/scripted_host.h"
#include "formats/format_table.h"
#include "process/effects_word.h"
#include "support/picture_files.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

using test::Picture;

class EffectsCommand : public ::testing::Test {
 protected:
  std::string Write(const std::string& name, const Picture& p) {
    EXPECT_EQ(test::WritePicture(p, dir / name), 0);
    return dir / name;
  }
  // The table with the DIB row limited to `maxBits`, as a shallower format would be.
  std::array<FormatEntry, kFormatCount> Limited(uint32_t maxBits) {
    std::array<FormatEntry, kFormatCount> table;
    std::copy(FormatTable().begin(), FormatTable().end(), table.begin());
    table[static_cast<size_t>(dib)].maxBits = maxBits;
    return table;
  }

  ScopedSettings settings;
  test::TempDir dir;
  ScriptedHost host;
  const int dib = FindFormatByExtension("DIB");
};

TEST_F(EffectsCommand, PalettePicturesKeepTheirDepthAndPalette) {
  Picture p = test::Pattern(11, 6, 8);
  std::string source = Write("eight.bmp", p);
  ASSERT_EQ(Effects(host, source, dib, kEffectSoften), kOk);
  EXPECT_EQ(host.statuses.back(), "Writing " + dir / "eight.dib");
  Picture out;
  ASSERT_EQ(test::ReadPicture(dir / "eight.dib", out), 0);
  EXPECT_EQ(out.bits, 8u);
  EXPECT_EQ(out.palette, p.palette);
}

TEST_F(EffectsCommand, GreyScaleOfTheFirstChoiceIsAnEightBitGreyPicture) {
  std::string source = Write("colour.bmp", test::Pattern(7, 3, 24));
  ASSERT_EQ(Effects(host, source, dib, EffectsWord(kEffectGrey, kPaletteOrthogonal)), kOk);
  Picture out;
  ASSERT_EQ(test::ReadPicture(dir / "colour.dib", out), 0);
  EXPECT_EQ(out.bits, 8u);
  EXPECT_EQ(out.palette[77], (Rgb{77, 77, 77}));
}

TEST_F(EffectsCommand, ReducesWhenTheDestinationCannotHoldTheResult) {
  std::string source = Write("deep.bmp", test::Pattern(30, 10, 24));
  auto eight = Limited(8);
  ASSERT_EQ(Effects(host, source, dib, kEffectSharpen, {}, eight), kOk);
  EXPECT_EQ(std::count(host.statuses.begin(), host.statuses.end(), "Quantizing " + source), 1);
  Picture out;
  ASSERT_EQ(test::ReadPicture(dir / "deep.dib", out), 0);
  EXPECT_EQ(out.bits, 8u);
  // Nothing fits a 1-bit destination; a 1-bit source is refused before anything is read.
  auto one = Limited(1);
  EXPECT_EQ(Effects(host, source, dib, kEffectSharpen, {}, one), kTooManyColours);
  std::string mono = Write("mono.bmp", test::Pattern(5, 5, 1));
  EXPECT_EQ(Effects(host, mono, dib, kEffectPromote), kUnsuitableImage);
  EXPECT_EQ(test::ListDirectory(dir.path()),
            (std::vector<std::string>{"deep.bmp", "deep.dib", "mono.bmp"}));
}

}  // namespace
}  // namespace pxm
