#pragma once

// What the codec oracle tests share: other programs decoding a file to RGB, made-up scenes to
// feed them, and the pixel-for-pixel comparison.

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "core/image_info.h"
#include "support/netpbm.h"
#include "support/programs.h"
#include "support/temp_dir.h"

namespace pxm::oracle {

inline const std::string kMagick = "convert-im6.q16";
inline const std::string kPython = "/usr/bin/python3";

inline bool HavePillow() {
  return test::Run(kPython + " -c 'import PIL' >/dev/null 2>&1") == 0;
}

// A missing oracle fails the test (a silent skip would pass without checking), unless
// PXM_ALLOW_MISSING_ORACLES=1.
#define PXM_ORACLE_REQUIRE(available, what)                                                  \
  do {                                                                                       \
    if (!(available)) {                                                                      \
      const char* allow = std::getenv("PXM_ALLOW_MISSING_ORACLES");                          \
      if (allow && std::string(allow) == "1") GTEST_SKIP() << (what) << " is not installed"; \
      FAIL() << (what) << " is needed (PXM_ALLOW_MISSING_ORACLES=1 skips)";                  \
    }                                                                                        \
  } while (0)

// Runs a command that writes a netpbm picture to its standard output.
inline bool DecodeWith(const std::string& command, test::RgbImage& out) {
  std::string bytes;
  return test::RunCapture(command + " 2>/dev/null", bytes) == 0 && test::ParseNetpbm(bytes, out);
}
// `frame` picks one image of several.
inline bool MagickDecode(const std::string& path, test::RgbImage& out, int frame = 0) {
  return DecodeWith(kMagick + " " + test::ShellQuote(path + "[" + std::to_string(frame) + "]") +
                        " -depth 8 ppm:-",
                    out);
}
inline bool PillowDecode(const std::string& path, test::RgbImage& out) {
  const std::string script =
      "import sys\nfrom PIL import Image\nim = Image.open(sys.argv[1]).convert('RGB')\n"
      "sys.stdout.buffer.write(b'P6\\n%d %d\\n255\\n' % im.size + im.tobytes())\n";
  return DecodeWith(kPython + " -c " + test::ShellQuote(script) + " " + test::ShellQuote(path),
                    out);
}

// A made-up scene of `colours` distinct colours (black and white for two; any colours for 0).
inline std::vector<Rgb> Scene(uint32_t width, uint32_t height, uint32_t colours,
                              uint32_t seed = 0) {
  std::vector<Rgb> out;
  uint32_t state = width * 7919u + height * 104729u + colours + seed * 31u;
  for (uint32_t n = 0; n < width * height; ++n) {
    state = state * 1664525u + 1013904223u;
    const uint32_t r = state >> 8, i = colours == 0 ? r : n < colours ? n : r % colours;
    auto c = [](uint32_t v) { return static_cast<uint8_t>(v); };
    if (colours == 2)
      out.push_back(i ? Rgb{255, 255, 255} : Rgb{0, 0, 0});
    else if (colours == 0)
      out.push_back(Rgb{c(r), c(r >> 8), c(r >> 16)});
    else
      out.push_back(Rgb{c(i * 37 + seed), c(i * 91 + 11), c(i * 151 + 7)});
  }
  return out;
}

inline void WritePpm(const std::string& path, const std::vector<Rgb>& pixels, uint32_t width,
                     uint32_t height) {
  std::string s = "P6\n" + std::to_string(width) + " " + std::to_string(height) + "\n255\n";
  for (const Rgb& c : pixels)
    s += {static_cast<char>(c.red), static_cast<char>(c.green), static_cast<char>(c.blue)};
  test::WriteFileBytes(path, s);
}

inline testing::AssertionResult Same(const std::vector<Rgb>& got, const test::RgbImage& want,
                                     uint32_t width, uint32_t height) {
  if (want.width != width || want.height != height || got.size() != want.pixels.size())
    return testing::AssertionFailure() << "oracle " << want.width << "x" << want.height
                                       << ", Pixmill " << width << "x" << height;
  for (size_t i = 0; i < got.size(); ++i)
    if (!(got[i] == want.pixels[i])) {
      const Rgb &a = got[i], &b = want.pixels[i];
      return testing::AssertionFailure()
             << "first difference at " << i % width << "," << i / width << ": Pixmill " << +a.red
             << "/" << +a.green << "/" << +a.blue << ", oracle " << +b.red << "/" << +b.green << "/"
             << +b.blue;
    }
  return testing::AssertionSuccess();
}

}  // namespace pxm::oracle
