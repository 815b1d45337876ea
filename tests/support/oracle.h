#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "core/image_info.h"
#include "support/netpbm.h"
#include "support/picture.h"

// What the oracle tests share: the other programs, decoding through them, made-up scenes and
// pixel-for-pixel comparison.
namespace pxm::test {

// ImageMagick by its own name: a stand-in called `convert` may shadow it.
inline const std::string kMagick = "convert-im6.q16";
inline const std::string kPython = "/usr/bin/python3";

// PXM_ALLOW_MISSING_ORACLES=1 lets a test whose program is missing skip instead of failing.
bool AllowMissingOracles();
bool HavePillow();

// An oracle that is not installed fails the test: a silent skip would pass without checking.
#define PXM_REQUIRE_ORACLE(available, what)                                  \
  do {                                                                      \
    if (!(available)) {                                                     \
      if (::pxm::test::AllowMissingOracles())                               \
        GTEST_SKIP() << (what) << " is not installed";                      \
      FAIL() << (what) << " is needed (PXM_ALLOW_MISSING_ORACLES=1 skips)"; \
    }                                                                       \
  } while (0)

// Runs a command that writes a netpbm picture to its standard output, and parses it.
bool DecodeCommand(const std::string& command, RgbImage& out);
bool MagickDecode(const std::string& path, RgbImage& out);
bool PillowDecode(const std::string& path, RgbImage& out);

// A made-up scene of `colours` distinct colours (grey levels when `grey`; black and white when
// two), each used where the pixels allow, or of any colours when `colours` is 0.
std::vector<Rgb> Scene(uint32_t width, uint32_t height, uint32_t colours, bool grey = false);
void WritePpm(const std::string& path, const std::vector<Rgb>& pixels, uint32_t width,
              uint32_t height);
// A Pixmill picture of the scene: 24-bit, or with a palette of its distinct colours.
Picture PictureOf(const std::vector<Rgb>& pixels, uint32_t width, uint32_t height, uint32_t bits);

// The colours match the oracle's picture, each channel within `tolerance`.
testing::AssertionResult SameImage(const std::vector<Rgb>& got, const RgbImage& want,
                                   uint32_t width, uint32_t height, int tolerance = 0);
// Pixmill reads the file (through its extension's row) as the oracle decoded it.
testing::AssertionResult ReadsAs(const std::string& path, const RgbImage& want,
                                 int tolerance = 0);

}  // namespace pxm::test
