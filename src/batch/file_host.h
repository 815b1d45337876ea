#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "core/host.h"

namespace pxm {

// The host one file of a walk runs on. Everything goes on to the walk's host; when files run
// side by side, one call at a time under `serial`, so questions are asked one after the other
// and the status line is drawn by one thread at a time. The first file written is kept as the
// file's output, and notices wait for the file's result, so they reach the user in the order of
// the files however many run at once. A file stops as soon as the user asked the whole walk to
// stop, whichever file's poll took the click.
class FileHost : public Host {
 public:
  FileHost(Host& shared, std::mutex* serial) : shared_(shared), serial_(serial) {}

  const std::string& Output() const { return output_; }
  const std::vector<Notice>& Notices() const { return notices_; }

  void SetStatus(std::string_view text) override;
  void ReportProgress(uint64_t total, uint64_t done) override;
  bool PollAbort() override;
  bool AbortRequested() const override;
  void Beep() override;
  int ShowMessage(std::string_view text) override;
  int AskYesNo(std::string_view text) override;
  std::optional<uint32_t> SelectImage(std::span<const std::string> names,
                                      uint32_t imageCount) override;
  std::optional<std::string> GetComment(std::string_view fileName,
                                        std::string_view prefilled) override;
  NextFileAnswer NextFile(std::string_view message, std::string_view directory) override;
  std::optional<std::string> SaveName(std::string_view suggested) override;
  bool ConfirmOverwrite(std::string_view path) override;
  int SetClipboard(const ClipboardPicture& picture) override;
  void SetWaitCursor(bool on) override;
  void FileWritten(std::string_view path) override;
  void Notify(Notice notice) override;

 private:
  // Runs `call` on the shared host, under the lock when there is one.
  template <typename Call>
  auto Forward(Call&& call) const {
    if (!serial_) return call(shared_);
    std::lock_guard lock(*serial_);
    return call(shared_);
  }

  Host& shared_;
  std::mutex* serial_;
  std::string output_;
  std::vector<Notice> notices_;
};

}  // namespace pxm
