#pragma once

#include <span>
#include <string>

#include "batch/file_walk.h"
#include "batch/operation.h"
#include "core/host.h"

namespace pxm {

// Add thumbnails: makes the thumbnail of every tagged file of the list in `directory`, in list
// order, passing over directory and drive entries. Each failure is shown as "NAME - TEXT" and
// the walk goes on with the next file, except after 4 (the user's click), which ends it. Answers
// the first failure's code, or 0.
int AddThumbnails(Host& host, std::span<const ListItem> items, const std::string& directory,
                  FormatTableView table = FormatTable());

}  // namespace pxm
