#pragma once

#include <string>
#include <string_view>
#include <vector>

// The lines a listing handler writes into the select-image list: at most 128 lines of at most 55
// characters each; what does not fit is dropped, as the list box has always done.
namespace pxm {

class ReportLines {
 public:
  static constexpr size_t kMaxLines = 128;
  static constexpr size_t kMaxLength = 55;

  explicit ReportLines(std::vector<std::string>& lines) : lines_(lines) {}
  void Add(std::string_view line);
  bool Full() const { return lines_.size() >= kMaxLines; }

  // Lays out text bytes in lines: bytes below 32 are dropped, a carriage return or a line already
  // 56 characters long ends the current line, and a last partial line is added at the end.
  void AddText(std::string_view text);

 private:
  std::vector<std::string>& lines_;
};

}  // namespace pxm
