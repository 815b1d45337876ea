#include "support/oracle.h"

#include <cstdlib>
#include <map>

#include "core/error_codes.h"
#include "support/programs.h"
#include "support/temp_dir.h"

namespace pxm::test {

bool AllowMissingOracles() {
  const char* v = std::getenv("PXM_ALLOW_MISSING_ORACLES");
  return v && std::string(v) == "1";
}

bool HavePillow() { return Run(kPython + " -c 'import PIL' >/dev/null 2>&1") == 0; }

bool DecodeCommand(const std::string& command, RgbImage& out) {
  std::string bytes;
  return RunCapture(command + " 2>/dev/null", bytes) == 0 && ParseNetpbm(bytes, out);
}

bool MagickDecode(const std::string& path, RgbImage& out) {
  return DecodeCommand(kMagick + " " + ShellQuote(path) + " -depth 8 ppm:-", out);
}

bool PillowDecode(const std::string& path, RgbImage& out) {
  const std::string script =
      "import sys\nfrom PIL import Image\nim = Image.open(sys.argv[1]).convert('RGB')\n"
      "sys.stdout.buffer.write(b'P6\\n%d %d\\n255\\n' % im.size + im.tobytes())\n";
  return DecodeCommand(kPython + " -c " + ShellQuote(script) + " " + ShellQuote(path), out);
}

std::vector<Rgb> Scene(uint32_t width, uint32_t height, uint32_t colours, bool grey) {
  std::vector<Rgb> out;
  uint32_t state = width * 7919u + height * 104729u + colours;
  for (uint32_t n = 0; n < width * height; ++n) {
    state = state * 1664525u + 1013904223u;
    const uint32_t r = state >> 8;
    const uint32_t i = colours == 0 ? r : n < colours ? n : r % colours;
    auto c = [](uint32_t v) { return static_cast<uint8_t>(v); };
    if (colours == 2)
      out.push_back(i ? Rgb{255, 255, 255} : Rgb{0, 0, 0});
    else if (grey)
      out.push_back(Rgb{c(i), c(i), c(i)});
    else if (colours == 0)
      out.push_back(Rgb{c(r), c(r >> 8), c(r >> 16)});
    else
      out.push_back(Rgb{c(i * 37), c(i * 91 + 11), c(i * 151 + 7)});
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

Picture PictureOf(const std::vector<Rgb>& pixels, uint32_t width, uint32_t height,
                  uint32_t bits) {
  Picture p = Picture::Blank(width, static_cast<int32_t>(height), bits);
  std::map<uint32_t, uint32_t> index;
  for (uint32_t y = 0; y < height; ++y)
    for (uint32_t x = 0; x < width; ++x) {
      const Rgb& c = pixels[y * width + x];
      const uint32_t v = (uint32_t{c.red} << 16) | (uint32_t{c.green} << 8) | c.blue;
      if (bits == 24) {
        p.SetPixel(x, static_cast<int32_t>(y), v);
        continue;
      }
      auto [it, added] = index.emplace(v, static_cast<uint32_t>(index.size()));
      if (added) p.palette[it->second] = c;
      p.SetPixel(x, static_cast<int32_t>(y), it->second);
    }
  return p;
}

testing::AssertionResult SameImage(const std::vector<Rgb>& got, const RgbImage& want,
                                   uint32_t width, uint32_t height, int tolerance) {
  if (want.width != width || want.height != height)
    return testing::AssertionFailure() << "oracle size " << want.width << "x" << want.height
                                       << ", Pixmill " << width << "x" << height;
  auto near = [tolerance](uint8_t a, uint8_t b) { return std::abs(int{a} - int{b}) <= tolerance; };
  for (size_t i = 0; i < got.size(); ++i) {
    const Rgb &a = got[i], &b = want.pixels[i];
    if (!near(a.red, b.red) || !near(a.green, b.green) || !near(a.blue, b.blue))
      return testing::AssertionFailure()
             << "first difference at " << i % width << "," << i / width << ": Pixmill " << +a.red
             << "/" << +a.green << "/" << +a.blue << ", oracle " << +b.red << "/" << +b.green << "/"
             << +b.blue;
  }
  return testing::AssertionSuccess();
}

testing::AssertionResult ReadsAs(const std::string& path, const RgbImage& want, int tolerance) {
  Picture p;
  int code = ReadPicture(path, p);
  if (code != kOk) return testing::AssertionFailure() << "Pixmill answers " << code;
  return SameImage(Colours(p), want, p.width, static_cast<uint32_t>(p.depth), tolerance);
}

}  // namespace pxm::test
