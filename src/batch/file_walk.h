#pragma once

#include <functional>
#include <span>
#include <string>
#include <vector>

namespace pxm {

// One item of the file list: its text and whether it is tagged.
struct ListItem {
  std::string text;
  bool selected = false;
};

struct WalkResult {
  std::string text;
  int code = 0;
};

// Calls `driver` for every tagged item in list order, skipping directory and drive entries
// (texts beginning with "["), and records each result before the next item. The walk stops
// early when `stop` answers true after an item.
std::vector<WalkResult> WalkTaggedFiles(std::span<const ListItem> items,
                                        const std::function<int(const std::string&)>& driver,
                                        const std::function<bool(int code)>& stop = {});

}  // namespace pxm
