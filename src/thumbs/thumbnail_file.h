#pragma once

#include <string>

#include "thumbs/thumbnail_cache.h"
#include "thumbs/thumbnail_record.h"

namespace pxm {

// Fills `record` from the ".THN" file at `path`; 1 when it did, 0 when the file is missing,
// unreadable or not a thumbnail (not 9480 bytes, another signature, a picture size outside
// 1..96). With a cache, a record read before from the unchanged file is taken from it, and a
// record read now is kept in it (unless `CacheCDROM` is off and the file lies on a read-only
// file system).
int ThumbReadThumbnail(ThumbnailRecord& record, const std::string& path,
                       ThumbCache* cache = nullptr);

// Writes the record to `path` through a temporary file renamed over it, so a failed write
// leaves any earlier thumbnail as it was. Non-zero on success.
int ThumbWriteThumbnail(const ThumbnailRecord& record, const std::string& path);

}  // namespace pxm
