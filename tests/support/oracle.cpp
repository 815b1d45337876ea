#include "support/oracle.h"

#include <cstdlib>
#include <map>

#include "support/programs.h"
#include "support/temp_dir.h"

namespace pxm::test {

bool RunIn(const std::string& directory, const std::string& command) {
  return Run("cd " + ShellQuote(directory) + " && (" + command + ") 2>/dev/null") == 0;
}

std::vector<Rgb> Scene(uint32_t width, uint32_t height, uint32_t colours) {
  std::vector<Rgb> out;
  uint32_t state = width * 7919u + height * 104729u + colours;
  auto c = [](uint32_t v) { return static_cast<uint8_t>(v); };
  for (uint32_t n = 0; n < width * height; ++n) {
    state = state * 1664525u + 1013904223u;
    const uint32_t r = state >> 8, i = colours == 0 ? r : n < colours ? n : r % colours;
    if (colours == 2)
      out.push_back(i ? Rgb{255, 255, 255} : Rgb{0, 0, 0});
    else if (colours == 0)
      out.push_back(Rgb{c(r), c(r >> 8), c(r >> 16)});
    else
      out.push_back(Rgb{c(i * 37), c(i * 91 + 11), c(i * 151 + 7)});
  }
  return out;
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

testing::AssertionResult SameImage(const std::vector<Rgb>& got, const RgbImage& want,
                                   int tolerance) {
  if (want.pixels.size() != got.size())
    return testing::AssertionFailure() << "oracle size " << want.width << "x" << want.height;
  auto near = [tolerance](uint8_t a, uint8_t b) { return std::abs(a - b) <= tolerance; };
  for (size_t i = 0; i < got.size(); ++i) {
    const Rgb &a = got[i], &b = want.pixels[i];
    if (!near(a.red, b.red) || !near(a.green, b.green) || !near(a.blue, b.blue))
      return testing::AssertionFailure()
             << "pixel " << i << ": Pixmill " << +a.red << "/" << +a.green << "/" << +a.blue
             << ", oracle " << +b.red << "/" << +b.green << "/" << +b.blue;
  }
  return testing::AssertionSuccess();
}

testing::AssertionResult ReadsAs(const std::string& path, const RgbImage& want) {
  Picture p;
  if (int code = ReadPicture(path, p)) return testing::AssertionFailure() << "Pixmill: " << code;
  if (p.width != want.width) return testing::AssertionFailure() << "width " << p.width;
  return SameImage(Colours(p), want);
}

}  // namespace pxm::test
