#include "support/netpbm.h"

#include <cctype>

#include "support/temp_dir.h"

namespace pxm::test {
namespace {

bool Token(const std::string& s, size_t& pos, uint32_t& value) {
  while (pos < s.size()) {
    if (s[pos] == '#') {
      while (pos < s.size() && s[pos] != '\n') ++pos;
    } else if (std::isspace(static_cast<unsigned char>(s[pos]))) {
      ++pos;
    } else {
      break;
    }
  }
  if (pos >= s.size() || !std::isdigit(static_cast<unsigned char>(s[pos]))) return false;
  value = 0;
  while (pos < s.size() && std::isdigit(static_cast<unsigned char>(s[pos])))
    value = value * 10 + static_cast<uint32_t>(s[pos++] - '0');
  return true;
}

}  // namespace

bool ParseNetpbm(const std::string& s, RgbImage& out) {
  if (s.size() < 2 || s[0] != 'P') return false;
  char kind = s[1];
  size_t pos = 2;
  uint32_t maxval = 1;
  if (!Token(s, pos, out.width) || !Token(s, pos, out.height)) return false;
  if (kind != '4' && !Token(s, pos, maxval)) return false;
  ++pos;  // the single whitespace before the raster
  const size_t n = static_cast<size_t>(out.width) * out.height;
  out.pixels.assign(n, Rgb{});
  const int bytes = maxval > 255 ? 2 : 1;
  auto sample = [&](size_t i) -> uint8_t {
    if (bytes == 1) return static_cast<uint8_t>(static_cast<unsigned char>(s[pos + i]) * 255 / maxval);
    uint32_t v = (static_cast<unsigned char>(s[pos + 2 * i]) << 8) |
                 static_cast<unsigned char>(s[pos + 2 * i + 1]);
    return static_cast<uint8_t>(v * 255 / maxval);
  };
  if (kind == '6') {
    if (s.size() < pos + 3 * n * bytes) return false;
    for (size_t i = 0; i < n; ++i) out.pixels[i] = Rgb{sample(3 * i), sample(3 * i + 1), sample(3 * i + 2)};
  } else if (kind == '5') {
    if (s.size() < pos + n * bytes) return false;
    for (size_t i = 0; i < n; ++i) {
      uint8_t g = sample(i);
      out.pixels[i] = Rgb{g, g, g};
    }
  } else if (kind == '4') {
    size_t rowBytes = (out.width + 7) / 8;
    if (s.size() < pos + rowBytes * out.height) return false;
    for (uint32_t y = 0; y < out.height; ++y)
      for (uint32_t x = 0; x < out.width; ++x) {
        bool black = (static_cast<unsigned char>(s[pos + y * rowBytes + x / 8]) >> (7 - x % 8)) & 1;
        uint8_t v = black ? 0 : 255;
        out.pixels[static_cast<size_t>(y) * out.width + x] = Rgb{v, v, v};
      }
  } else {
    return false;
  }
  return true;
}

bool ReadNetpbmFile(const std::string& path, RgbImage& out) {
  return ParseNetpbm(ReadFileBytes(path), out);
}

}  // namespace pxm::test
