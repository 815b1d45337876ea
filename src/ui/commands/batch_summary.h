#pragma once

#include <string>
#include <vector>

// What a batch did, as the short result at its end tells it.
namespace pxm::ui {

struct FileOutcome {
  std::string file;
  int code = 0;
};

struct BatchSummary {
  size_t requested = 0;              // files the batch was asked to do
  size_t written = 0;                // files done without error
  std::vector<FileOutcome> failed;   // in the order they were tried
  std::string stoppedAfter;          // the file during which the user stopped the batch
  std::vector<std::string> untried;  // files the stop left undone

  // The failed files and the undone ones: what "Tag the failed files" tags for another try.
  std::vector<std::string> ToRetry() const;
};

// The summary of a walk over `files`: `outcomes` are the ones tried, in order (fewer when the
// user stopped the batch with a click during the last of them).
BatchSummary Summarize(const std::vector<std::string>& files,
                       const std::vector<FileOutcome>& outcomes, bool stopped);

// The first line: "No files written", "One file written" or "%u files written".
std::string WrittenText(size_t written);

// The whole result: the written line, then "%u of %u files could not be done:" and one
// "NAME - TEXT" line per failed file, then the note of a stop.
std::string SummaryText(const BatchSummary& summary);

// Whether the summary needs to be shown as a dialog (anything failed or was left undone).
inline bool NeedsAttention(const BatchSummary& summary) {
  return !summary.failed.empty() || !summary.stoppedAfter.empty();
}

}  // namespace pxm::ui
