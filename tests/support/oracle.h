#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/image_info.h"
#include "support/netpbm.h"
#include "support/oracles.h"
#include "support/picture.h"

// Made-up scenes and pixel comparison for the oracle tests (the programs are in oracles.h).
namespace pxm::test {

// Runs a shell line in `directory`, its messages dropped; true when it succeeded.
bool RunIn(const std::string& directory, const std::string& command);

// A made-up scene of `colours` distinct colours (black and white when two), or of any colours
// when `colours` is 0; written as a PPM file, or made a Pixmill picture of `bits` (a palette of
// the scene's colours below 24).
std::vector<Rgb> Scene(uint32_t width, uint32_t height, uint32_t colours);
Picture PictureOf(const std::vector<Rgb>& pixels, uint32_t width, uint32_t height, uint32_t bits);

// The colours match the oracle's picture, each channel within `tolerance`.
testing::AssertionResult SameImage(const std::vector<Rgb>& got, const RgbImage& want,
                                   int tolerance = 0);
// Pixmill reads the file (through its extension's row) as the oracle decoded it.
testing::AssertionResult ReadsAs(const std::string& path, const RgbImage& want);

}  // namespace pxm::test
