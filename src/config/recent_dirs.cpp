#include "config/recent_dirs.h"

#include <algorithm>

#include "core/platform.h"

namespace pxm {

void RecentDirectories::Add(std::string_view path) {
  std::string item = path.empty() ? platform::CurrentDirectory() : std::string(path);
  if (item.size() > 260) item.resize(260);
  if (item.empty() || item[0] != '/') return;
  // Paths are compared exactly: directories differing only in case are different here.
  items_.erase(std::remove(items_.begin(), items_.end(), item), items_.end());
  if (items_.size() >= kLimit) items_.erase(items_.begin());
  items_.push_back(std::move(item));
}

}  // namespace pxm
