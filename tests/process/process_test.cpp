#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "process/crop_selection.h"
#include "process/scale_tables.h"
#include "process/transform.h"

namespace pxm {
namespace {

using Table = std::vector<uint32_t>;

Table Built(uint64_t size, uint32_t percent, uint32_t source) {
  Table t;
  BuildScaleTable(t, size, percent, source);
  return t;
}

TEST(ScaleTables, TargetSizesWorkThePercentBackByIntegerDivisionAndValuesAreHeldInRange) {
  // (Plain percents are checked through the Scale command.) A target works the percent back by
  // integer division, which may cut it short: 15 pixels from 1000 is 1 %, a step of 100, and the
  // entries past the last column stay on it.
  ScaledAxis held = ScaleAxis(1000, 100, 15);
  EXPECT_EQ(held.percent, 1u);
  EXPECT_EQ(held.size, 15u);
  EXPECT_EQ(Built(15, 1, 1000),
            (Table{0, 100, 200, 300, 400, 500, 600, 700, 800, 900, 999, 999, 999, 999, 999}));
  // 16 pixels from 2000 rounds the percent to 0: an infinite step, held from the second entry.
  EXPECT_EQ(ScaleAxis(2000, 100, 16).percent, 0u);
  EXPECT_EQ(Built(4, 0, 2000), (Table{0, 1999, 1999, 1999}));

  EXPECT_EQ(ClampScaleValue(3), 16);
  EXPECT_EQ(ClampScaleValue(1'000'000), 32760);
  EXPECT_EQ(ClampScaleValue(640), 640);
}

TEST(ScaleTables, ByTargetSize640x480From320x200) {
  ScaledAxis across = ScaleAxis(320, 100, 640), down = ScaleAxis(200, 100, 480);
  EXPECT_EQ(across.percent, 200u);
  EXPECT_EQ(down.percent, 240u);
  Table columns = Built(across.size, across.percent, 320);
  for (uint32_t x = 0; x < 640; ++x) ASSERT_EQ(columns[x], x / 2) << x;
  // Steps of 1 / 2.4: row r copies row r × 5 / 12, give or take the floating-point sum landing
  // a hair under a whole number where r × 5 / 12 is one.
  Table rows = Built(down.size, down.percent, 200);
  ASSERT_EQ(rows.size(), 480u);
  for (uint32_t r = 0; r < 480; ++r) {
    uint32_t exact = r * 5 / 12;
    if (r % 12 == 0 && r > 0) EXPECT_TRUE(rows[r] == exact || rows[r] + 1 == exact) << r;
    else EXPECT_EQ(rows[r], exact) << r;
  }
  EXPECT_EQ(rows[3], 1u);
  EXPECT_EQ(rows[479], 199u);
}

TEST(Transform, ModesByNameAndNumber) {
  EXPECT_EQ(ParseTransformMode("rotate90"), kRotate90);
  EXPECT_EQ(ParseTransformMode("flip-v"), kFlipVertical);
  EXPECT_EQ(ParseTransformMode("103"), kRotate270);
  EXPECT_EQ(ParseTransformMode("106"), std::nullopt);
  EXPECT_EQ(ParseTransformMode("101x"), std::nullopt);
  EXPECT_EQ(ParseTransformMode(""), std::nullopt);
}

TEST(CropSelection, DragsClampsAndConvertsThroughTheDisplayScale) {
  CropSelection s;
  s.SetBitmapSize(100, 50);
  const double half = DisplayScale(5000);
  EXPECT_EQ(half, 0.5);
  EXPECT_FALSE(s.Press(10, 10));
  EXPECT_FALSE(s.HasSelection());  // a press alone selects nothing
  s.Drag(20, 30);
  ASSERT_TRUE(s.HasSelection());
  EXPECT_EQ(s.ToImage(half), (CropRect{20, 20, 20, 40}));
  EXPECT_EQ(s.Caption(15, 12, half), "(30,24)      [ (20,20) (40,60) ]");

  // A second press drops the selection; the read-out goes back to the pointer alone.
  EXPECT_TRUE(s.Press(5, 5));
  EXPECT_EQ(s.left, -1);
  EXPECT_EQ(s.bottom, -1);
  EXPECT_EQ(s.Caption(5, 5, half), "(10,10)");

  // Dragged from the bottom right towards the top left, and past the bitmap's edges.
  s.Press(90, 40);
  s.Drag(-30, 400);
  int32_t l, t, r, b;
  s.Normalised(l, t, r, b);
  EXPECT_EQ(std::vector<int32_t>({l, t, r, b}), std::vector<int32_t>({0, 40, 90, 50}));
  EXPECT_EQ(s.ToImage(1.0), (CropRect{0, 40, 90, 10}));
  s.Press(0, 0);
  s.Press(150, 70);
  s.Drag(160, 80);
  EXPECT_FALSE(s.HasSelection());  // both corners held at the far edges: nothing between them
  // Scales that are not a power of two truncate each product on its own.
  s.Clear();
  s.Press(3, 3);
  s.Drag(10, 10);
  EXPECT_EQ(s.ToImage(DisplayScale(3000)), (CropRect{10, 10, 23, 23}));
}

}  // namespace
}  // namespace pxm
