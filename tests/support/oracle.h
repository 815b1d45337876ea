#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/image_info.h"
#include "support/netpbm.h"
#include "support/picture.h"

// What the oracle tests share: the other programs, made-up scenes and pixel comparison.
namespace pxm::test {

// ImageMagick by its own name: a stand-in called `convert` may shadow it.
inline const std::string kMagick = "convert-im6.q16";

bool HavePillow();

// A missing oracle fails the test (PXM_ALLOW_MISSING_ORACLES=1 skips it instead): a silent skip
// would pass without checking.
#define PXM_REQUIRE_ORACLE(available, what)                                                  \
  do {                                                                                       \
    if (!(available)) {                                                                      \
      const char* allow = std::getenv("PXM_ALLOW_MISSING_ORACLES");                          \
      if (allow && std::string(allow) == "1") GTEST_SKIP() << (what) << " is not installed"; \
      FAIL() << (what) << " is needed (PXM_ALLOW_MISSING_ORACLES=1 skips)";                  \
    }                                                                                        \
  } while (0)

// Runs a shell line in `directory`, its messages dropped; true when it succeeded.
bool RunIn(const std::string& directory, const std::string& command);
// Runs a command that writes a netpbm picture to its standard output, and parses it; ImageMagick
// and Pillow decode a file that way.
bool DecodeCommand(const std::string& command, RgbImage& out);
bool MagickDecode(const std::string& path, RgbImage& out);
bool PillowDecode(const std::string& path, RgbImage& out);

// A made-up scene of `colours` distinct colours (black and white when two), or of any colours
// when `colours` is 0; written as a PPM file, or made a Pixmill picture of `bits` (a palette of
// the scene's colours below 24).
std::vector<Rgb> Scene(uint32_t width, uint32_t height, uint32_t colours);
void WritePpm(const std::string& path, const std::vector<Rgb>& pixels, uint32_t width,
              uint32_t height);
Picture PictureOf(const std::vector<Rgb>& pixels, uint32_t width, uint32_t height, uint32_t bits);

// The colours match the oracle's picture, each channel within `tolerance`.
testing::AssertionResult SameImage(const std::vector<Rgb>& got, const RgbImage& want,
                                   int tolerance = 0);
// Pixmill reads the file (through its extension's row) as the oracle decoded it.
testing::AssertionResult ReadsAs(const std::string& path, const RgbImage& want);

}  // namespace pxm::test
