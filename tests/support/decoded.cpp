#include "support/decoded.h"

#include <gtest/gtest.h>

#include "core/pixels.h"
#include "core/row_format.h"

namespace pxm::test {

uint32_t Decoded::Pixel(uint32_t x, int32_t y) const {
  return PixelAt(rows.at(y).data(), x, StorageBits(info.bits));
}

Decoded DecodeFile(const std::string& path, int abortOn, uint32_t imageIndex) {
  Decoded d;
  const int format = FindFormat(path);
  if (format < 0) return d;
  d.info.background = 9;  // a stale value shows whether info sets the fill value itself
  d.info.imageIndex = imageIndex;
  d.infoCode = FormatAt(format).info(d.info, path, 0);
  if (d.infoCode != 0) return d;
  const auto stored = static_cast<ptrdiff_t>(PackedRowBytes(d.info.width, d.info.bits));
  d.info.putLine = [&](std::span<uint8_t> row, int32_t y) {
    d.rows[y] = Bytes(row.begin(), row.begin() + stored);
    d.order.push_back(y);
    return static_cast<int>(d.order.size()) == abortOn ? 1 : 0;
  };
  d.readCode = FormatAt(format).read(d.info, path);
  d.info.putLine = nullptr;
  return d;
}

Decoded DecodeBytes(const TempDir& dir, const std::string& name, const std::string& bytes,
                    int abortOn) {
  WriteFileBytes(dir / name, bytes);
  return DecodeFile(dir / name, abortOn);
}

testing::AssertionResult RoundTrips(const Picture& p, const std::string& path, uint32_t bits) {
  if (int code = WritePicture(p, path)) return testing::AssertionFailure() << "write " << code;
  Picture q;
  if (int code = ReadPicture(path, q)) return testing::AssertionFailure() << "read " << code;
  if (q.bits != bits) return testing::AssertionFailure() << "read back " << q.bits << " bits";
  for (int32_t y = 0; y < p.depth; ++y)
    for (uint32_t x = 0; x < p.width; ++x)
      if (q.Pixel(x, y) != p.Pixel(x, y))
        return testing::AssertionFailure() << "pixel " << x << "," << y;
  for (uint32_t i = 0; p.bits > 1 && p.bits <= 8 && i < (1u << p.bits); ++i)
    if (!(q.palette[i] == p.palette[i])) return testing::AssertionFailure() << "palette " << i;
  return testing::AssertionSuccess();
}

std::string JoinLines(const std::vector<std::string>& lines) {
  std::string s;
  for (size_t i = 0; i < lines.size(); ++i) s += (i ? "\n" : "") + lines[i];
  return s;
}

std::string Rules(const std::string& text) {
  std::vector<std::string> lines;
  for (size_t at = 0; at <= text.size();) {
    const size_t end = std::min(text.find('\n', at), text.size());
    lines.push_back(text.substr(at, end - at) == "=" ? std::string(49, '-')
                                                     : text.substr(at, end - at));
    at = end + 1;
  }
  return JoinLines(lines);
}

std::string Raw(std::initializer_list<int> bytes) {
  std::string s;
  for (int b : bytes) s += static_cast<char>(b);
  return s;
}

std::string Le(uint32_t value, int bytes) {
  std::string s;
  for (int i = 0; i < bytes; ++i) s += static_cast<char>(value >> (8 * i));
  return s;
}

std::string Be(uint32_t value, int bytes) {
  std::string s;
  for (int i = bytes - 1; i >= 0; --i) s += static_cast<char>(value >> (8 * i));
  return s;
}

std::vector<std::string> UuencodeLines(const std::string& bytes) {
  auto c = [](uint32_t v) { return static_cast<char>(v == 0 ? '`' : v + 32); };
  std::vector<std::string> lines;
  for (size_t at = 0; at < bytes.size(); at += 45) {
    const std::string part = bytes.substr(at, 45);
    std::string line(1, c(static_cast<uint32_t>(part.size())));
    for (size_t g = 0; g < part.size(); g += 3) {
      uint32_t v = 0;
      for (size_t k = 0; k < 3; ++k)
        v = v << 8 | (g + k < part.size() ? static_cast<uint8_t>(part[g + k]) : 0u);
      line += {c(v >> 18), c((v >> 12) & 63), c((v >> 6) & 63), c(v & 63)};
    }
    lines.push_back(line);
  }
  return lines;
}

}  // namespace pxm::test
