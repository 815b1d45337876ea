#pragma once

#include <string>
#include <vector>

// The select-image list that a format's listing handler fills, with image names or with the
// lines of a file's block, chunk or card report: the list box takes at most 128 lines of up to
// 55 characters, and further lines are dropped.
namespace pxm {

constexpr size_t kMaxListLines = 128;
constexpr size_t kMaxListLineLength = 55;

inline void AddListLine(std::vector<std::string>& list, std::string line) {
  if (list.size() >= kMaxListLines) return;
  if (line.size() > kMaxListLineLength) line.resize(kMaxListLineLength);
  list.push_back(std::move(line));
}

}  // namespace pxm
