#include "support/oracles.h"

#include <cstdlib>

#include "support/programs.h"
#include "support/temp_dir.h"

namespace pxm::test {

bool AllowMissingOracles() {
  const char* v = std::getenv("PXM_ALLOW_MISSING_ORACLES");
  return v && std::string(v) == "1";
}

bool HavePillow() { return Run(kPython + " -c 'import PIL' >/dev/null 2>&1") == 0; }

bool DecodeWith(const std::string& command, RgbImage& out) {
  std::string bytes;
  return RunCapture(command + " 2>/dev/null", bytes) == 0 && ParseNetpbm(bytes, out);
}

bool MagickDecode(const std::string& path, RgbImage& out) {
  return DecodeWith(kMagick + " " + ShellQuote(path) + " -depth 8 ppm:-", out);
}

bool PillowDecode(const std::string& path, RgbImage& out) {
  const std::string script =
      "import sys\nfrom PIL import Image\nim = Image.open(sys.argv[1]).convert('RGB')\n"
      "sys.stdout.buffer.write(b'P6\\n%d %d\\n255\\n' % im.size + im.tobytes())\n";
  return DecodeWith(kPython + " -c " + ShellQuote(script) + " " + ShellQuote(path), out);
}

void WritePpm(const std::string& path, const std::vector<Rgb>& pixels, uint32_t width,
              uint32_t height) {
  std::string s = "P6\n" + std::to_string(width) + " " + std::to_string(height) + "\n255\n";
  for (const Rgb& c : pixels)
    s += {static_cast<char>(c.red), static_cast<char>(c.green), static_cast<char>(c.blue)};
  WriteFileBytes(path, s);
}

testing::AssertionResult SameColours(const std::vector<Rgb>& got, const RgbImage& want,
                                     uint32_t width, uint32_t height, int tolerance) {
  if (want.width != width || want.height != height)
    return testing::AssertionFailure() << "oracle size " << want.width << "x" << want.height
                                       << ", Pixmill " << width << "x" << height;
  if (got.size() != want.pixels.size()) return testing::AssertionFailure() << "pixel count";
  auto off = [tolerance](uint8_t a, uint8_t b) { return std::abs(a - b) > tolerance; };
  for (size_t i = 0; i < got.size(); ++i) {
    const Rgb &a = got[i], &b = want.pixels[i];
    if (off(a.red, b.red) || off(a.green, b.green) || off(a.blue, b.blue))
      return testing::AssertionFailure()
             << "first difference at " << i % width << "," << i / width << ": Pixmill " << +a.red
             << "/" << +a.green << "/" << +a.blue << ", oracle " << +b.red << "/" << +b.green
             << "/" << +b.blue;
  }
  return testing::AssertionSuccess();
}

}  // namespace pxm::test
