#pragma once

#include <string>
#include <string_view>

namespace pxm::cli {

// Whether `text` is well-formed UTF-8 (lead and continuation bytes only; overlong forms pass).
inline bool IsUtf8(std::string_view text) {
  for (size_t i = 0; i < text.size();) {
    auto c = static_cast<unsigned char>(text[i]);
    size_t extra;
    if (c < 0x80) extra = 0;
    else if ((c & 0xE0) == 0xC0) extra = 1;
    else if ((c & 0xF0) == 0xE0) extra = 2;
    else if ((c & 0xF8) == 0xF0) extra = 3;
    else return false;
    if (extra > text.size() - i - 1) return false;
    for (size_t k = 1; k <= extra; ++k)
      if ((static_cast<unsigned char>(text[i + k]) & 0xC0) != 0x80) return false;
    i += extra + 1;
  }
  return true;
}

// `text` as a JSON string literal. Text that is not UTF-8 (file names may be anything) has its
// high bytes escaped as \u00XX so that the output always parses.
inline std::string JsonString(std::string_view text) {
  const bool utf8 = IsUtf8(text);
  std::string out = "\"";
  for (unsigned char c : text) {
    switch (c) {
      case '"': out += "\\\""; break;
      case '\\': out += "\\\\"; break;
      case '\n': out += "\\n"; break;
      case '\r': out += "\\r"; break;
      case '\t': out += "\\t"; break;
      default:
        if (c < 0x20 || (c >= 0x80 && !utf8)) {
          static const char* hex = "0123456789abcdef";
          out += "\\u00";
          out += hex[c >> 4];
          out += hex[c & 15];
        } else {
          out += static_cast<char>(c);
        }
    }
  }
  return out + "\"";
}

}  // namespace pxm::cli
