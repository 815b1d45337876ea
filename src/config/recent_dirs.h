#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace pxm {

// The File menu's recently used directories, oldest first, as data. The menu gives item i the
// command identifier 1000 + i.
class RecentDirectories {
 public:
  static constexpr size_t kLimit = 9;
  static constexpr int kFirstCommand = 1000;

  // Adds `path` (the current directory when empty) as the newest entry: an entry already listed
  // moves to the newest place, and the oldest goes when the list is full. Only absolute paths
  // are taken, as only drive paths were on systems with drive letters.
  void Add(std::string_view path = {});
  const std::vector<std::string>& Items() const { return items_; }
  void Clear() { items_.clear(); }

 private:
  std::vector<std::string> items_;
};

}  // namespace pxm
