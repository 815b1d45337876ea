#include "formats/fits_cards.h"

#include <cstdlib>
#include <limits>

#include "core/strings.h"

namespace pxm {

FitsCard ParseFitsCard(const char* card) {
  FitsCard out;
  size_t k = 0;
  while (k < kFitsCardBytes && card[k] != ' ' && card[k] != '=') ++k;
  out.keyword.assign(card, k);
  size_t v = k;
  while (v < kFitsCardBytes && (card[v] == ' ' || card[v] == '=')) ++v;
  size_t end = kFitsCardBytes;
  while (end > v && card[end - 1] == ' ') --end;
  out.value.assign(card + v, end - v);
  return out;
}

bool ReadFitsCard(InputFile& in, FitsCard& card) {
  char raw[kFitsCardBytes];
  if (!in.ReadExact(raw, sizeof raw)) return false;
  card = ParseFitsCard(raw);
  return true;
}

int64_t FitsInteger(const std::string& value) {
  size_t i = 0;
  while (i < value.size() && value[i] == ' ') ++i;
  bool negative = false;
  if (i < value.size() && (value[i] == '-' || value[i] == '+')) negative = value[i++] == '-';
  int64_t n = 0;
  constexpr int64_t kMax = std::numeric_limits<int64_t>::max();
  for (; i < value.size() && value[i] >= '0' && value[i] <= '9'; ++i) {
    const int digit = value[i] - '0';
    n = n > (kMax - digit) / 10 ? kMax : n * 10 + digit;
  }
  return negative ? -n : n;
}

double FitsReal(const std::string& value, double fallback) {
  const char* start = value.c_str();
  char* end = nullptr;
  double v = std::strtod(start, &end);
  return end == start ? fallback : v;
}

std::string FormatFitsCard(const std::string& keyword, const std::string& value) {
  std::string card = FormatText("%-8.8s=%21.21s", keyword.c_str(), value.c_str());
  card.resize(kFitsCardBytes, ' ');
  return card;
}

std::string FormatFitsEndCard() {
  std::string card = FormatText("%-8.8s", "END");
  card.resize(kFitsCardBytes, ' ');
  return card;
}

}  // namespace pxm
