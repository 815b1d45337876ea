#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "config/settings.h"
#include "core/host.h"
#include "core/image_info.h"
#include "core/image_store.h"
#include "formats/format_table.h"

namespace pxm {

using FormatTableView = std::span<const FormatEntry, kFormatCount>;

// What one running command owns for the file in hand: its own copy of the settings, taken when
// it starts and in force on this thread while it runs, the current record and the one store.
struct Operation {
  explicit Operation(Host& h, FormatTableView t = FormatTable()) : host(h), table(t), store(h) {
    info.host = &h;
  }
  // Reset when the work ends but the picture stays (a kept picture): the copy is in force on
  // this thread only for as long as the operation runs.
  std::optional<OperationSettings> settings{std::in_place};
  Host& host;
  FormatTableView table;
  ImageInfo info;
  ImageStore store;
};

// The wait cursor, shown for as long as the object lives.
class WaitCursor {
 public:
  explicit WaitCursor(Host& host) : host_(host) { host_.SetWaitCursor(true); }
  ~WaitCursor() { host_.SetWaitCursor(false); }
  WaitCursor(const WaitCursor&) = delete;
  WaitCursor& operator=(const WaitCursor&) = delete;

 private:
  Host& host_;
};

// The store options the settings in force ask for: straight to the spill file with
// `UseVirtualMemoryAlways`, no spill file at all without a `VirtualMemoryDrive` letter.
unsigned SpillPolicy();

// Looks the source up, runs its info handler (purpose 0) and, for a row that may hold several
// images, the select-image box; when an image other than the first was chosen, info runs again
// for it. Answers the code, and the source row in `row`.
int OpenSource(Operation& op, const std::string& path, int& row);

// The select-image box for a multi-image row: names from the record's image count. Cancelling
// answers 4.
int ChooseImage(Operation& op, int row, const std::string& path);

// Shows "Reading %s", points putLine at `sink`, clears the progress counter and the abort flag
// and runs the row's reader.
int ReadSource(Operation& op, int row, const std::string& path, LineSink sink);

// Runs `entry`'s writer for the record on a temporary file beside `output` and renames it over
// the output name only when the writer succeeded: nothing is left behind on failure and an
// existing file of that name survives it. A success is announced to the host.
int WriteThroughTemporary(Host& host, const FormatEntry& entry, ImageInfo& info,
                          const std::string& output);
// The same for any way of writing a file: `write` fills the temporary path it is given. With a
// record, the files its writer made besides the output (`companions`) are named with it.
int WriteThroughTemporary(Host& host, const std::string& output,
                          const std::function<int(const std::string& path)>& write,
                          ImageInfo* info = nullptr);

// Shows `status` ("Writing %s" with the output name when empty), resets the progress cell, puts
// the output path into the record, points getLine at `source` and runs the destination's writer
// through WriteThroughTemporary.
int WriteDestination(Operation& op, int destRow, const std::string& output, LineSource source,
                     std::string_view status = {});

}  // namespace pxm
