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
  WalkTaggedFiles(
      items,
      [&](const std::string& name) {
        int code = MakeThumbnail(host, JoinPath(directory, name), nullptr, table);
        if (code != kOk) {
          host.ShowMessage(FileErrorLine(name, code));
          if (first == kOk) first = code;
        }
        return code;
      },
      [](int code) { return code == kCancelled; });
  return first;
}

}  // namespace pxm
