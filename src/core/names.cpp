#include "core/names.h"

#include <algorithm>

namespace pxm {
namespace {

size_t NameStart(std::string_view path) {
  auto pos = path.find_last_of(kSeparator);
  return pos == std::string_view::npos ? 0 : pos + 1;
}

size_t ExtensionDot(std::string_view path) {
  size_t start = NameStart(path);
  auto dot = path.find_last_of('.');
  return (dot == std::string_view::npos || dot < start) ? std::string_view::npos : dot;
}

char Lower(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }
char Upper(char c) { return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c; }

}  // namespace

std::string NamePart(std::string_view path) { return std::string(path.substr(NameStart(path))); }

std::string DirectoryPart(std::string_view path) {
  return std::string(path.substr(0, NameStart(path)));
}

std::string ExtensionOf(std::string_view path) {
  size_t dot = ExtensionDot(path);
  return dot == std::string_view::npos ? std::string() : std::string(path.substr(dot + 1));
}

std::string StripExtension(std::string_view path) {
  size_t dot = ExtensionDot(path);
  return std::string(dot == std::string_view::npos ? path : path.substr(0, dot));
}

std::string ReplaceExtension(std::string_view path, std::string_view extension) {
  std::string out = StripExtension(path);
  out += '.';
  out += extension;
  return out;
}

std::string WithTrailingSeparator(std::string_view directory) {
  std::string out(directory);
  if (!out.empty() && out.back() != kSeparator) out += kSeparator;
  return out;
}

std::string JoinPath(std::string_view directory, std::string_view name) {
  return WithTrailingSeparator(directory) + std::string(name);
}

std::string LowerCaseName(std::string_view path) {
  std::string out(path);
  std::transform(out.begin() + static_cast<std::ptrdiff_t>(NameStart(path)), out.end(),
                 out.begin() + static_cast<std::ptrdiff_t>(NameStart(path)), Lower);
  return out;
}

std::string UpperCaseName(std::string_view path) {
  std::string out(path);
  std::transform(out.begin() + static_cast<std::ptrdiff_t>(NameStart(path)), out.end(),
                 out.begin() + static_cast<std::ptrdiff_t>(NameStart(path)), Upper);
  return out;
}

std::string ToLowerAscii(std::string_view text) {
  std::string out(text);
  std::transform(out.begin(), out.end(), out.begin(), Lower);
  return out;
}

std::string ToUpperAscii(std::string_view text) {
  std::string out(text);
  std::transform(out.begin(), out.end(), out.begin(), Upper);
  return out;
}

bool EqualsIgnoreCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() &&
         std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) { return Lower(x) == Lower(y); });
}

}  // namespace pxm
