#include "commands/batch_summary.h"

#include "core/strings.h"

namespace pxm::ui {

BatchSummary Summarize(const std::vector<std::string>& files,
                       const std::vector<FileOutcome>& outcomes, bool stopped) {
  BatchSummary summary;
  summary.requested = files.size();
  for (const FileOutcome& outcome : outcomes) {
    if (outcome.code == 0)
      ++summary.written;
    else
      summary.failed.push_back(outcome);
  }
  if (stopped && !outcomes.empty() && outcomes.size() < files.size()) {
    summary.stoppedAfter = outcomes.back().file;
    summary.untried.assign(files.begin() + static_cast<std::ptrdiff_t>(outcomes.size()),
                           files.end());
  }
  return summary;
}

std::vector<std::string> BatchSummary::ToRetry() const {
  std::vector<std::string> files;
  for (const FileOutcome& outcome : failed) files.push_back(outcome.file);
  files.insert(files.end(), untried.begin(), untried.end());
  return files;
}

std::string WrittenText(size_t written) {
  if (written == 0) return std::string(LoadMessage(kStrNoFilesWritten));
  if (written == 1) return std::string(LoadMessage(kStrOneFileWritten));
  return FillText(LoadMessage(kStrFilesWritten), "%u", std::to_string(written));
}

std::string SummaryText(const BatchSummary& summary) {
  std::string text = WrittenText(summary.written);
  if (!summary.failed.empty()) {
    std::string line =
        FillText(LoadMessage(kStrFilesFailed), "%u", std::to_string(summary.failed.size()));
    line = FillText(line, "%u", std::to_string(summary.requested));
    // Appended piece by piece: "literal" + string trips a false -Wrestrict of GCC 12 at -O3.
    text.append("\n\n").append(line);
    for (const FileOutcome& outcome : summary.failed)
      text.append("\n").append(FileErrorLine(outcome.file, outcome.code));
  }
  if (!summary.stoppedAfter.empty())
    text.append("\n\n").append(MessageWithName(kStrBatchStopped, summary.stoppedAfter));
  return text;
}

}  // namespace pxm::ui
