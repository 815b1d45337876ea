#include "formats/report_lines.h"

namespace pxm {

void ReportLines::Add(std::string_view line) {
  if (Full()) return;
  lines_.emplace_back(line.substr(0, kMaxLength));
}

void ReportLines::AddText(std::string_view text) {
  constexpr size_t kTextLine = 56;
  std::string line;
  for (char ch : text) {
    const auto c = static_cast<unsigned char>(ch);
    if (c == 13) {
      Add(line);
      line.clear();
    } else if (c >= 32) {
      if (line.size() >= kTextLine) {
        Add(line);
        line.clear();
      }
      line.push_back(ch);
    }
  }
  if (!line.empty()) Add(line);
}

}  // namespace pxm
