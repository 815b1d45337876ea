#pragma once

#include <atomic>
#include <optional>
#include <string>
#include <vector>

#include "core/host.h"

namespace pxm::cli {

// What the command line answers in place of the program's dialogs.
struct Answers {
  std::optional<bool> yes;                 // --yes / --no
  std::optional<uint32_t> image;           // --image N
  std::optional<std::string> comment;      // --comment TEXT
  std::optional<std::string> output;       // --output PATH
  std::vector<std::string> nextFiles;      // --uue-part PATH...
  bool quiet = false;
};

// The host of `pxm`: a one-line status and progress bar on stderr when it is a terminal,
// questions answered from the options (or asked on the terminal), Ctrl-C as the user's click.
class TerminalHost : public Host {
 public:
  explicit TerminalHost(Answers answers);
  ~TerminalHost() override;

  // Ctrl-C was pressed during this run.
  bool Interrupted() const;
  // Clears the status line before other output.
  void ClearLine();

  void SetStatus(std::string_view text) override;
  void ReportProgress(uint64_t total, uint64_t done) override;
  bool PollAbort() override;
  bool AbortRequested() const override { return Interrupted(); }
  void Beep() override {}
  int ShowMessage(std::string_view text) override;
  int AskYesNo(std::string_view text) override;
  std::optional<uint32_t> SelectImage(std::span<const std::string> names,
                                      uint32_t imageCount) override;
  std::optional<std::string> GetComment(std::string_view fileName,
                                        std::string_view prefilled) override;
  NextFileAnswer NextFile(std::string_view message, std::string_view directory) override;
  std::optional<std::string> SaveName(std::string_view suggested) override;
  bool ConfirmOverwrite(std::string_view path) override;
  int SetClipboard(const ClipboardPicture&) override { return 5; }
  void SetWaitCursor(bool) override {}
  void FileWritten(std::string_view) override {}
  // Says each kind of notice once a run, on stderr (not with --quiet).
  void Notify(Notice notice) override;

 private:
  bool Ask(std::string_view question);
  void Draw();

  Answers answers_;
  size_t nextFile_ = 0;
  bool showProgress_ = false;
  bool interactive_ = false;
  bool abortTaken_ = false;
  std::string status_;
  int lastPercent_ = -1;
  bool lineShown_ = false;
  uint32_t noticesGiven_ = 0;
};

}  // namespace pxm::cli
