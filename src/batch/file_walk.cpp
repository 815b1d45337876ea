#include "batch/file_walk.h"

namespace pxm {

std::vector<WalkResult> WalkTaggedFiles(std::span<const ListItem> items,
                                        const std::function<int(const std::string&)>& driver,
                                        const std::function<bool(int code)>& stop) {
  std::vector<WalkResult> results;
  for (const ListItem& item : items) {
    if (!item.selected || (!item.text.empty() && item.text[0] == '[')) continue;
    int code = driver(item.text);
    results.push_back({item.text, code});
    if (stop && stop(code)) break;
  }
  return results;
}

}  // namespace pxm
