#include "batch/file_host.h"

namespace pxm {

void FileHost::SetStatus(std::string_view text) {
  Forward([&](Host& h) { h.SetStatus(text); });
}

void FileHost::ReportProgress(uint64_t total, uint64_t done) {
  Forward([&](Host& h) { h.ReportProgress(total, done); });
}

bool FileHost::PollAbort() {
  return Forward([](Host& h) { return h.PollAbort() || h.AbortRequested(); });
}

bool FileHost::AbortRequested() const {
  return Forward([](Host& h) { return h.AbortRequested(); });
}

void FileHost::Beep() {
  Forward([](Host& h) { h.Beep(); });
}

int FileHost::ShowMessage(std::string_view text) {
  return Forward([&](Host& h) { return h.ShowMessage(text); });
}

int FileHost::AskYesNo(std::string_view text) {
  return Forward([&](Host& h) { return h.AskYesNo(text); });
}

std::optional<uint32_t> FileHost::SelectImage(std::span<const std::string> names,
                                              uint32_t imageCount) {
  return Forward([&](Host& h) { return h.SelectImage(names, imageCount); });
}

std::optional<std::string> FileHost::GetComment(std::string_view fileName,
                                                std::string_view prefilled) {
  return Forward([&](Host& h) { return h.GetComment(fileName, prefilled); });
}

NextFileAnswer FileHost::NextFile(std::string_view message, std::string_view directory) {
  return Forward([&](Host& h) { return h.NextFile(message, directory); });
}

std::optional<std::string> FileHost::SaveName(std::string_view suggested) {
  return Forward([&](Host& h) { return h.SaveName(suggested); });
}

bool FileHost::ConfirmOverwrite(std::string_view path) {
  return Forward([&](Host& h) { return h.ConfirmOverwrite(path); });
}

int FileHost::SetClipboard(const ClipboardPicture& picture) {
  return Forward([&](Host& h) { return h.SetClipboard(picture); });
}

void FileHost::SetWaitCursor(bool on) {
  Forward([&](Host& h) { h.SetWaitCursor(on); });
}

void FileHost::FileWritten(std::string_view path) {
  if (output_.empty()) output_ = path;
  Forward([&](Host& h) { h.FileWritten(path); });
}

void FileHost::Notify(Notice notice) { notices_.push_back(notice); }

}  // namespace pxm
