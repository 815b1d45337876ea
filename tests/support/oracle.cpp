#include "support/oracle.h"

#include <cstdlib>
#include <map>

#include "support/programs.h"
#include "support/temp_dir.h"

namespace pxm::test {

bool AllowMissingOracles() {
  const char* v = std::getenv("PXM_ALLOW_MISSING_ORACLES");
  return v && std::string(v) == "1";
}

bool HavePillow() {
  return Run(kPython + " -c 'import PIL' >/dev/null 2>&1") == 0;
}

bool RunIn(const std::string& directory, const std::string& command) {
  return Run("cd " + ShellQuote(directory) + " && (" + command + ") 2>/dev/null") == 0;
}

bool DecodeWith(const std::string& command, RgbImage& out) {
  std::string bytes;
  return RunCapture(command + " 2>/dev/null", bytes) == 0 && ParseNetpbm(bytes, out);
}

bool MagickDecode(const std::string& path, RgbImage& out, int frame) {
  return DecodeWith(
      kMagick + " " + ShellQuote(path + "[" + std::to_string(frame) + "]") + " -depth 8 ppm:-",
      out);
}

bool PillowDecode(const std::string& path, RgbImage& out) {
  const std::string script =
      "import sys\nfrom PIL import Image\nim = Image.open(sys.argv[1]).convert('RGB')\n"
      "sys.stdout.buffer.write(b'P6\\n%d %d\\n255\\n' % im.size + im.tobytes())\n";
  return DecodeWith(kPython + " -c " + ShellQuote(script) + " " + ShellQuote(path), out);
}

std::vector<Rgb> Scene(uint32_t width, uint32_t height, uint32_t colours, uint32_t seed) {
  std::vector<Rgb> out;
  uint32_t state = width * 7919u + height * 104729u + colours + seed * 31u;
  auto c = [](uint32_t v) { return static_cast<uint8_t>(v); };
  for (uint32_t n = 0; n < width * height; ++n) {
    state = state * 1664525u + 1013904223u;
    const uint32_t r = state >> 8, i = colours == 0 ? r : n < colours ? n : r % colours;
    if (colours == 2)
      out.push_back(i ? Rgb{255, 255, 255} : Rgb{0, 0, 0});
    else if (colours == 0)
      out.push_back(Rgb{c(r), c(r >> 8), c(r >> 16)});
    else
      out.push_back(Rgb{c(i * 37 + seed), c(i * 91 + 11), c(i * 151 + 7)});
  }
  return out;
}

void WritePpm(const std::string& path, const std::vector<Rgb>& pixels, uint32_t width,
              uint32_t height) {
  std::string s = "P6\n" + std::to_string(width) + " " + std::to_string(height) + "\n255\n";
  for (const Rgb& c : pixels)
    s += {static_cast<char>(c.red), static_cast<char>(c.green), static_cast<char>(c.blue)};
  WriteFileBytes(path, s);
}

Picture PictureOf(const std::vector<Rgb>& pixels, uint32_t width, uint32_t height, uint32_t bits) {
  Picture p = Picture::Blank(width, static_cast<int32_t>(height), bits);
  std::map<uint32_t, uint32_t> index;
  for (uint32_t n = 0; n < width * height; ++n) {
    const Rgb& c = pixels[n];
    uint32_t v = (uint32_t{c.red} << 16) | (uint32_t{c.green} << 8) | c.blue;
    if (bits != 24) {
      auto [it, added] = index.emplace(v, static_cast<uint32_t>(index.size()));
      if (added) p.palette[it->second] = c;
      v = it->second;
    }
    p.SetPixel(n % width, static_cast<int32_t>(n / width), v);
  }
  return p;
}

testing::AssertionResult SameColours(const std::vector<Rgb>& got, uint32_t width,
                                     const RgbImage& want, int tolerance) {
  const size_t height = width ? got.size() / width : 0;
  if (want.width != width || want.height != height || got.size() != want.pixels.size())
    return testing::AssertionFailure() << "oracle " << want.width << "x" << want.height
                                       << ", Pixmill " << width << "x" << height;
  auto off = [tolerance](uint8_t a, uint8_t b) { return std::abs(a - b) > tolerance; };
  for (size_t i = 0; i < got.size(); ++i) {
    const Rgb &a = got[i], &b = want.pixels[i];
    if (off(a.red, b.red) || off(a.green, b.green) || off(a.blue, b.blue))
      return testing::AssertionFailure()
             << "first difference at " << i % width << "," << i / width << ": Pixmill " << +a.red
             << "/" << +a.green << "/" << +a.blue << ", oracle " << +b.red << "/" << +b.green << "/"
             << +b.blue;
  }
  return testing::AssertionSuccess();
}

testing::AssertionResult SameColours(const Picture& got, const RgbImage& want, int tolerance) {
  return SameColours(Colours(got), got.width, want, tolerance);
}

testing::AssertionResult SameSplit(const std::vector<Rgb>& got, const RgbImage& want) {
  if (got.size() != want.pixels.size()) return testing::AssertionFailure() << "a different size";
  std::map<uint32_t, Rgb> seen;
  for (size_t i = 0; i < got.size(); ++i) {
    const Rgb g = got[i], w = want.pixels[i];
    if (!(g == Rgb{0, 0, 0} || g == Rgb{255, 255, 255}))
      return testing::AssertionFailure() << "a pixel neither black nor white";
    const uint32_t key = (uint32_t{w.red} << 16) | (uint32_t{w.green} << 8) | w.blue;
    if (!(seen.emplace(key, g).first->second == g))
      return testing::AssertionFailure() << "the pixels split otherwise";
  }
  return testing::AssertionSuccess();
}

testing::AssertionResult ReadsAs(const std::string& path, const RgbImage& want, int tolerance) {
  Picture p;
  if (int code = ReadPicture(path, p)) return testing::AssertionFailure() << "Pixmill: " << code;
  return SameColours(p, want, tolerance);
}

}  // namespace pxm::test
