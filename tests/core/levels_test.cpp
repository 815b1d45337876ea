#include "core/levels.h"

#include <gtest/gtest.h>

namespace pxm {
namespace {

TEST(ContrastBrightnessTable, ContrastAndBrightnessWithinTheLimits) {
  auto t = ContrastBrightnessTable(0, 0, 1, 254);
  EXPECT_EQ(t[0], 1);  // never 0
  EXPECT_EQ(t[1], 1);
  EXPECT_EQ(t[100], 100);
  EXPECT_EQ(t[255], 254);  // never 255
  // Contrast 127: denominator 2, slope 128, starting at -127.
  t = ContrastBrightnessTable(127, 0, 1, 254);
  EXPECT_EQ(t[0], 1);
  EXPECT_EQ(t[1], 1);
  EXPECT_EQ(t[2], 129);
  EXPECT_EQ(t[3], 254);
  EXPECT_EQ(t[255], 254);
  // Above 127 the denominator becomes 0.001: only the first entry escapes 254.
  t = ContrastBrightnessTable(200, 250, 1, 254);
  EXPECT_EQ(t[0], 50);
  EXPECT_EQ(t[1], 254);
  EXPECT_EQ(ContrastBrightnessTable(128, 0, 1, 254)[0], 1);
  // The default contrast 20: slope 256/216 from -20.
  t = ContrastBrightnessTable(20, 0, 1, 254);
  EXPECT_EQ(t[18], 1);
  EXPECT_EQ(t[19], 2);
  EXPECT_EQ(t[128], 131);
  // Over the full range the straight line with no contrast is the identity.
  t = ContrastBrightnessTable(0, 0, 0, 255);
  for (size_t i = 0; i < 256; ++i) EXPECT_EQ(t[i], i);
}

TEST(PowerCurve, RoundedAndKeptWithinTheLevels) {
  LevelTable t = PowerCurve(2.0);
  EXPECT_EQ(t[0], 0);
  EXPECT_EQ(t[128], 64);  // 255 × (128 / 255)² = 64.25
  EXPECT_EQ(t[255], 255);
  // A negative exponent sends level 0 to infinity: it is kept at 255.
  t = PowerCurve(-1.0);
  EXPECT_EQ(t[0], 255);
  EXPECT_EQ(t[255], 255);
}

}  // namespace
}  // namespace pxm
