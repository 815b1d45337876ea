#pragma once

#include <string>
#include <vector>

#include "batch/file_walk.h"
#include "commands/batch_summary.h"
#include "commands/batch_window.h"

namespace pxm::ui {

// Runs `driver` over `files` (names in the listed directory) one after the other, the way every
// batch command does: input is held back and a click stops the batch after the file in hand;
// each failure other than a cancel gets its "NAME - TEXT" box; at the end the result is shown
// (in the status bar when everything was written, else in the result dialog, which can tag the
// failed files). Answers the summary.
BatchSummary RunBatch(BatchWindow& window, const std::vector<std::string>& files,
                      const FileDriver& driver);

}  // namespace pxm::ui
