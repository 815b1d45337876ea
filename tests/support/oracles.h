#pragma once

#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "core/image_info.h"
#include "support/netpbm.h"

// Other programs as oracles: running them, decoding their output, comparing pictures.
namespace pxm::test {

// ImageMagick under the one name that a stand-in cannot shadow, and the Python that has Pillow.
inline const std::string kMagick = "convert-im6.q16";
inline const std::string kPython = "/usr/bin/python3";

// Whether a missing oracle program may skip its test (PXM_ALLOW_MISSING_ORACLES=1).
bool AllowMissingOracles();
bool HavePillow();

// Runs a command that writes a netpbm picture to its standard output and parses it.
bool DecodeWith(const std::string& command, RgbImage& out);
bool MagickDecode(const std::string& path, RgbImage& out);
bool PillowDecode(const std::string& path, RgbImage& out);

// A binary PPM of the pixels, row by row.
void WritePpm(const std::string& path, const std::vector<Rgb>& pixels, uint32_t width,
              uint32_t height);

// The colours equal the oracle's, each channel within `tolerance`; the message names the first
// difference.
testing::AssertionResult SameColours(const std::vector<Rgb>& got, const RgbImage& want,
                                     uint32_t width, uint32_t height, int tolerance = 0);

}  // namespace pxm::test

// An oracle that is not installed fails the test: a silent skip would pass without checking.
#define PXM_REQUIRE_ORACLE(available, what)                                 \
  do {                                                                      \
    if (!(available)) {                                                     \
      if (::pxm::test::AllowMissingOracles())                               \
        GTEST_SKIP() << (what) << " is not installed";                      \
      FAIL() << (what) << " is needed (PXM_ALLOW_MISSING_ORACLES=1 skips)"; \
    }                                                                       \
  } while (0)
