#include "commands/batch_runner.h"

#include "batch/file_walk.h"
#include "core/error_codes.h"
#include "core/names.h"
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
                      const FileDriver& driver) {
  GuiHost& host = window.BatchHost();
  std::vector<FileOutcome> outcomes;
  bool stopped = false;
  {
    BatchScope scope(host);
    // One file after the other on this thread: the walk's own host is the window's.
    WalkFiles(
        host, files,
        [&](Host& fileHost, size_t index, const std::string& file) {
          host.SetFileInHand(NamePart(file));
          int code = driver(fileHost, index, file);
          // A cancel is the user's own doing (a click, a dialog's Cancel): no box for it.
          if (code != kOk && code != kCancelled)
            fileHost.ShowMessage(FileErrorLine(NamePart(file), code));
          return code;
        },
        {},
        [&](const FileResult& result) {
          outcomes.push_back({result.source, result.code});
        });
    stopped = host.AbortRequested();
    host.SetStatus({});
  }
  BatchSummary summary = Summarize(files, outcomes, stopped);
  window.BatchFinished();
  if (NeedsAttention(summary)) {
    if (ShowBatchResult(window.Owner(), summary)) window.TagEntries(summary.ToRetry());
  } else {
    host.SetStatus(WrittenText(summary.written));
  }
  return summary;
}

}  // namespace pxm::ui
