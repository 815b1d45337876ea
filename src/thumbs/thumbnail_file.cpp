#include "thumbs/thumbnail_file.h"

#include <vector>

#include "config/settings.h"
#include "core/file_io.h"
#include "core/names.h"
#include "core/platform.h"

namespace pxm {

int ThumbReadThumbnail(ThumbnailRecord& record, const std::string& path, ThumbCache* cache) {
  auto stamp = platform::StampOf(path);
  if (!stamp) {
    if (cache) cache->Forget(path);
    return 0;
  }
  if (cache && cache->Find(path, *stamp, record)) return 1;
  std::vector<uint8_t> bytes;
  ThumbnailRecord read;
  if (!ReadWholeFile(path, bytes, kThumbRecordBytes) || !DecodeThumbnail(bytes, read)) {
    if (cache) cache->Forget(path);
    return 0;
  }
  record = read;
  if (cache && (CurrentSettings().CacheCDROM || !platform::OnReadOnlyFileSystem(path)))
    cache->Store(path, *stamp, record);
  return 1;
}

int ThumbWriteThumbnail(const ThumbnailRecord& record, const std::string& path) {
  auto temporary = platform::CreateTemporaryFileIn(DirectoryPart(path), NamePart(path));
  if (!temporary) return 0;
  std::vector<uint8_t> bytes(kThumbRecordBytes);
  EncodeThumbnail(record, std::span<uint8_t, kThumbRecordBytes>(bytes.data(), bytes.size()));
  OutputFile out;
  bool written = out.Create(*temporary) && out.Write(bytes.data(), bytes.size()) && out.Commit();
  if (!written || !platform::ReplaceFile(*temporary, path)) {
    platform::RemoveFile(*temporary);
    return 0;
  }
  return 1;
}

}  // namespace pxm
