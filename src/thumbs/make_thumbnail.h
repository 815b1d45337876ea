#pragma once

#include <span>
#include <string>

#include "core/host.h"
#include "formats/format_table.h"
#include "thumbs/thumbnail_record.h"

namespace pxm {

// Makes the thumbnail of the picture at `path` and writes it to the picture's thumbnail file
// (ThumbnailFileOf), in the `DitherThumbnails` mode. Answers 0, 8 when no row has the file's
// extension, 7 when the header gives no picture, 6 when memory runs out, 10 when the thumbnail
// cannot be written, or the code of the row's info handler or reader. A row without an info
// handler, or a motion row whose frames the program does not read itself, gets no thumbnail:
// the answer is 0 and `written` stays empty. Otherwise `written` receives the thumbnail's path.
int MakeThumbnail(Host& host, const std::string& path, std::string* written = nullptr,
                  std::span<const FormatEntry, kFormatCount> table = FormatTable());

// The same making without the file: fills `record` and sets `made`. A row that gets no thumbnail
// answers 0 with `made` false; any failure leaves `made` false.
int MakeThumbnailRecord(Host& host, const std::string& path, ThumbnailRecord& record, bool& made,
                        std::span<const FormatEntry, kFormatCount> table = FormatTable());

}  // namespace pxm
