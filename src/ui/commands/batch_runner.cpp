#include "commands/batch_runner.h"

#include "batch/file_walk.h"
#include "common/qt_text.h"
#include "core/error_codes.h"
#include "core/strings.h"
#include "dialogs/batch_result_dialog.h"
#include "host/gui_host.h"

namespace pxm::ui {
namespace {

// Begin and end of the batch frame, whatever way the walk ends.
class BatchScope {
 public:
  explicit BatchScope(GuiHost& host) : host_(host) { host_.BeginBatch(); }
  ~BatchScope() { host_.EndBatch(); }
  BatchScope(const BatchScope&) = delete;
  BatchScope& operator=(const BatchScope&) = delete;

 private:
  GuiHost& host_;
};

}  // namespace

BatchSummary RunBatch(BatchWindow& window, const std::vector<std::string>& files,
                      const std::function<int(const std::string& file)>& driver) {
  GuiHost& host = window.BatchHost();
  std::vector<FileOutcome> outcomes;
  {
    BatchScope scope(host);
    std::vector<ListItem> items;
    items.reserve(files.size());
    for (const std::string& file : files) items.push_back({file, true});
    auto results = WalkTaggedFiles(
        items,
        [&](const std::string& file) {
          host.SetFileInHand(file);
          int code = driver(file);
          // A cancel is the user's own choice (a click, a dialog's Cancel): no box for it.
          if (code != kOk && code != kCancelled) host.ShowMessage(FileErrorLine(file, code));
          return code;
        },
        [&](int) { return host.AbortRequested(); });
    for (const WalkResult& result : results) outcomes.push_back({result.text, result.code});
    host.SetStatus({});
  }
  BatchSummary summary = Summarize(files, outcomes, host.AbortRequested());
  window.BatchFinished();
  if (NeedsAttention(summary)) {
    if (ShowBatchResult(window.Owner(), summary)) window.TagEntries(summary.ToRetry());
  } else {
    host.SetStatus(WrittenText(summary.written));
  }
  return summary;
}

}  // namespace pxm::ui
