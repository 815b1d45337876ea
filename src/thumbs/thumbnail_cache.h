#pragma once

#include <list>
#include <string>
#include <unordered_map>

#include "core/platform.h"
#include "thumbs/thumbnail_record.h"

namespace pxm {

// Records read from ".THN" files, kept so that paging back and forth through a directory does
// not read the same files again. It holds `ThumbnailCache` records at most (the setting is read
// at each store, so a change takes effect at once) and lets the least recently used go first. A
// record is handed out only while its file's stamp (size, modification time, identity) is the
// one it was read with. The owner of a thumbnail view keeps one, and clears it on every change
// of directory.
class ThumbCache {
 public:
  // Copies the record cached for `path` into `record` when its stamp is `stamp`, and makes it
  // the most recently used. A stale record is dropped.
  bool Find(const std::string& path, const platform::FileStamp& stamp, ThumbnailRecord& record);
  void Store(const std::string& path, const platform::FileStamp& stamp,
             const ThumbnailRecord& record);
  void Forget(const std::string& path);
  void Clear();
  size_t Size() const { return entries_.size(); }

 private:
  struct Entry {
    std::string path;
    platform::FileStamp stamp;
    ThumbnailRecord record;
  };
  std::list<Entry> entries_;  // most recently used first
  std::unordered_map<std::string, std::list<Entry>::iterator> index_;
};

// Empties the cache.
void ThumbClearCache(ThumbCache& cache);

}  // namespace pxm
