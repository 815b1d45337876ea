#include "thumbs/thumbnail_cache.h"

#include "config/settings.h"

namespace pxm {

bool ThumbCache::Find(const std::string& path, const platform::FileStamp& stamp,
                      ThumbnailRecord& record) {
  auto it = index_.find(path);
  if (it == index_.end()) return false;
  if (!(it->second->stamp == stamp)) {
    entries_.erase(it->second);
    index_.erase(it);
    return false;
  }
  entries_.splice(entries_.begin(), entries_, it->second);
  record = entries_.front().record;
  return true;
}

void ThumbCache::Store(const std::string& path, const platform::FileStamp& stamp,
                       const ThumbnailRecord& record) {
  Forget(path);
  const int32_t capacity = CurrentSettings().ThumbnailCache;
  if (capacity <= 0) return;
  while (entries_.size() >= static_cast<size_t>(capacity)) {
    index_.erase(entries_.back().path);
    entries_.pop_back();
  }
  entries_.push_front(Entry{path, stamp, record});
  index_[path] = entries_.begin();
}

void ThumbCache::Forget(const std::string& path) {
  auto it = index_.find(path);
  if (it == index_.end()) return;
  entries_.erase(it->second);
  index_.erase(it);
}

void ThumbCache::Clear() {
  entries_.clear();
  index_.clear();
}

void ThumbClearCache(ThumbCache& cache) {
  cache.Clear();
}

}  // namespace pxm
