#include "support/decoded.h"

#include "core/pixels.h"
#include "core/row_format.h"

namespace pxm::test {

uint32_t Decoded::Pixel(uint32_t x, int32_t y) const {
  return PixelAt(rows.at(y).data(), x, StorageBits(info.bits));
}

Decoded DecodeWith(InfoHandler infoHandler, ReadHandler readHandler, const std::string& path,
                   int abortOn, Host* host) {
  Decoded d;
  d.info.host = host;
  // A stale value shows whether info sets the fill value itself.
  d.info.background = 9;
  d.infoCode = infoHandler(d.info, path, 0);
  if (d.infoCode != 0) return d;
  int delivered = 0;
  const auto stored = static_cast<size_t>(PackedRowBytes(d.info.width, d.info.bits));
  d.info.putLine = [&](std::span<uint8_t> row, int32_t y) {
    d.rows[y] = std::vector<uint8_t>(row.begin(), row.begin() + static_cast<ptrdiff_t>(stored));
    d.order.push_back(y);
    return ++delivered == abortOn ? 1 : 0;
  };
  d.readCode = readHandler(d.info, path);
  d.info.putLine = nullptr;
  return d;
}

Decoded Decode(const std::string& path, int abortOn, Host* host) {
  int row = FindFormat(path);
  if (row < 0) return Decoded{};
  return DecodeWith(FormatAt(row).info, FormatAt(row).read, path, abortOn, host);
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

std::vector<uint8_t> Bytes(const std::string& text) {
  return std::vector<uint8_t>(text.begin(), text.end());
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
