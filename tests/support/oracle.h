#pragma once

// Other programs as oracles: running them, the made-up scenes they are given, their decoding of
// a file to RGB, and the pixel-for-pixel comparison with what Pixmill shows.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/image_info.h"
#include "support/netpbm.h"
#include "support/picture_files.h"

namespace pxm::test {

// ImageMagick under the one name that a stand-in cannot shadow, and the Python that has Pillow.
inline const std::string kMagick = "convert-im6.q16";
inline const std::string kPython = "/usr/bin/python3";

// Whether a missing oracle program may skip its test (PXM_ALLOW_MISSING_ORACLES=1).
bool AllowMissingOracles();
bool HavePillow();

// Runs a shell line in `directory`, its messages dropped; true when it succeeded.
bool RunIn(const std::string& directory, const std::string& command);
// Runs a command that writes a netpbm picture to its standard output and parses it.
bool DecodeWith(const std::string& command, RgbImage& out);
// `frame` picks one image of several.
bool MagickDecode(const std::string& path, RgbImage& out, int frame = 0);
bool PillowDecode(const std::string& path, RgbImage& out);

// A made-up scene of `colours` distinct colours, each used where the pixels allow (black and
// white when two), or of any colours when `colours` is 0.
std::vector<Rgb> Scene(uint32_t width, uint32_t height, uint32_t colours, uint32_t seed = 0);
void WritePpm(const std::string& path, const std::vector<Rgb>& pixels, uint32_t width,
              uint32_t height);
// The scene as a Pixmill picture of `bits` (a palette of its colours below 24).
Picture PictureOf(const std::vector<Rgb>& pixels, uint32_t width, uint32_t height, uint32_t bits);

// The colours of a picture `width` wide equal the oracle's, each channel within `tolerance`; the
// message names the first difference.
testing::AssertionResult SameColours(const std::vector<Rgb>& got, uint32_t width,
                                     const RgbImage& want, int tolerance = 0);
testing::AssertionResult SameColours(const Picture& got, const RgbImage& want, int tolerance = 0);
// A one-bit picture against an oracle that shows the file's own two colours: every pixel black or
// white, and the pixels split as the oracle's are.
testing::AssertionResult SameSplit(const std::vector<Rgb>& got, const RgbImage& want);
// Pixmill reads the file (through its extension's row) as the oracle decoded it.
testing::AssertionResult ReadsAs(const std::string& path, const RgbImage& want, int tolerance = 0);

}  // namespace pxm::test

// An oracle that is not installed fails the test: a silent skip would pass without checking.
#define PXM_REQUIRE_ORACLE(available, what)                                                  \
  do {                                                                                       \
    if (!(available)) {                                                                      \
      if (::pxm::test::AllowMissingOracles()) GTEST_SKIP() << (what) << " is not installed"; \
      FAIL() << (what) << " is needed (PXM_ALLOW_MISSING_ORACLES=1 skips)";                  \
    }                                                                                        \
  } while (0)
