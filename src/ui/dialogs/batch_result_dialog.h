#pragma once

#include "commands/batch_summary.h"

class QWidget;

namespace pxm::ui {

// The short result at the end of a batch that did not do everything: what was written, which
// files failed and why, with a button that tags the failed (and undone) files for another try.
// Answers whether that button was pressed.
bool ShowBatchResult(QWidget* owner, const BatchSummary& summary);

}  // namespace pxm::ui
