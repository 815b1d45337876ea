#pragma once

#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "core/host.h"

namespace pxm {

// A host whose answers are set in advance and which records what the engine showed. Tests use
// it to play the user; `pxm` builds its answers from command-line options on top of it.
class ScriptedHost : public Host {
 public:
  // Answers.
  int yesNoAnswer = kIdNo;
  bool overwriteAnswer = false;
  std::optional<uint32_t> imageAnswer = 0u;      // nothing = the select-image box is cancelled
  std::optional<std::string> commentAnswer;      // nothing = the pre-filled text as it stands
  bool cancelComment = false;
  std::deque<NextFileAnswer> nextFileAnswers;    // then Ok
  std::optional<std::string> saveAnswer;         // nothing = the save dialog is cancelled
  int clipboardResult = 5;
  // PollAbort answers true on this call (counting from 1) and on every call after it; 0 never.
  uint64_t abortOnPoll = 0;
  bool abortRequested = false;  // the user asked the whole batch to stop

  // What the engine did.
  std::vector<std::string> statuses;
  std::vector<std::string> messages;
  std::vector<std::string> questions;
  std::vector<std::string> commentPrompts;  // pre-filled texts of the comment dialogs shown
  std::vector<std::string> nextFilePrompts;
  std::vector<std::string> writtenFiles;
  std::vector<std::string> selectLists;     // the lists shown in select-image boxes, joined
  std::optional<ClipboardPicture> clipboard;
  std::vector<Notice> notices;
  uint64_t polls = 0;
  uint64_t beeps = 0;
  uint64_t progressCalls = 0;
  uint64_t lastTotal = 0;
  uint64_t lastDone = 0;
  bool waitCursor = false;

  void SetStatus(std::string_view text) override { statuses.emplace_back(text); }
  void ReportProgress(uint64_t total, uint64_t done) override {
    ++progressCalls;
    lastTotal = total;
    lastDone = done;
  }
  bool PollAbort() override {
    ++polls;
    return abortOnPoll != 0 && polls >= abortOnPoll;
  }
  bool AbortRequested() const override { return abortRequested; }
  void Beep() override { ++beeps; }
  int ShowMessage(std::string_view text) override {
    messages.emplace_back(text);
    return kIdOk;
  }
  int AskYesNo(std::string_view text) override {
    questions.emplace_back(text);
    return yesNoAnswer;
  }
  std::optional<uint32_t> SelectImage(std::span<const std::string> names,
                                      uint32_t) override {
    std::string joined;
    for (const auto& n : names) joined += n + "\n";
    selectLists.push_back(joined);
    return imageAnswer;
  }
  std::optional<std::string> GetComment(std::string_view,
                                        std::string_view prefilled) override {
    commentPrompts.emplace_back(prefilled);
    if (cancelComment) return std::nullopt;
    return commentAnswer ? *commentAnswer : std::string(prefilled);
  }
  NextFileAnswer NextFile(std::string_view message, std::string_view) override {
    nextFilePrompts.emplace_back(message);
    if (nextFileAnswers.empty()) return {};
    NextFileAnswer a = nextFileAnswers.front();
    nextFileAnswers.pop_front();
    return a;
  }
  std::optional<std::string> SaveName(std::string_view) override { return saveAnswer; }
  bool ConfirmOverwrite(std::string_view path) override {
    questions.emplace_back(path);
    return overwriteAnswer;
  }
  int SetClipboard(const ClipboardPicture& picture) override {
    if (clipboardResult == 0) clipboard = picture;
    return clipboardResult;
  }
  void SetWaitCursor(bool on) override { waitCursor = on; }
  void FileWritten(std::string_view path) override { writtenFiles.emplace_back(path); }
  void Notify(Notice notice) override { notices.push_back(notice); }
};

}  // namespace pxm
