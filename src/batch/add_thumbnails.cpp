#include "batch/add_thumbnails.h"

#include "core/error_codes.h"
#include "core/names.h"
#include "core/strings.h"
#include "thumbs/make_thumbnail.h"

namespace pxm {

int AddThumbnails(Host& host, std::span<const ListItem> items, const std::string& directory,
                  FormatTableView table) {
  WaitCursor cursor(host);
  int first = kOk;
  WalkOptions options;
  options.stopAfter = [](const FileResult& result) { return result.code == kCancelled; };
  WalkFiles(
      host, TaggedFiles(items),
      [&](Host& fileHost, size_t, const std::string& name) {
        int code = MakeThumbnail(fileHost, JoinPath(directory, name), nullptr, table);
        if (code != kOk) {
          fileHost.ShowMessage(FileErrorLine(name, code));
          if (first == kOk) first = code;
        }
        return code;
      },
      options);
  return first;
}

}  // namespace pxm
