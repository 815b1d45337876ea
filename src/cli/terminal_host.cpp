#include "cli/terminal_host.h"

#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <iostream>

#include "core/platform.h"

namespace pxm::cli {
namespace {

std::atomic<int> gInterrupts{0};

// Ends the process the way `signal` would have, less the half-written files.
void EndBy(int signal) {
  platform::RemovePendingTemporaryFiles();
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

extern "C" void OnInterrupt(int) {
  // The first Ctrl-C is the user's click; a second one ends the process at once.
  if (gInterrupts.fetch_add(1) >= 1) EndBy(SIGINT);
}

extern "C" void OnTermination(int signal) { EndBy(signal); }

}  // namespace

TerminalHost::TerminalHost(Answers answers) : answers_(std::move(answers)) {
  showProgress_ = !answers_.quiet && platform::IsTerminal(STDERR_FILENO);
  interactive_ = platform::IsTerminal(STDIN_FILENO);
  gInterrupts = 0;
  std::signal(SIGINT, OnInterrupt);
  std::signal(SIGTERM, OnTermination);
  std::signal(SIGHUP, OnTermination);
}

TerminalHost::~TerminalHost() {
  ClearLine();
  std::signal(SIGINT, SIG_DFL);
  std::signal(SIGTERM, SIG_DFL);
  std::signal(SIGHUP, SIG_DFL);
}

bool TerminalHost::Interrupted() const { return gInterrupts.load() > 0; }

void TerminalHost::ClearLine() {
  if (lineShown_) {
    std::fputs("\r\033[K", stderr);
    lineShown_ = false;
  }
}

void TerminalHost::Draw() {
  if (!showProgress_) return;
  std::string line = "\r\033[K" + status_.substr(0, 50);
  if (lastPercent_ >= 0) {
    int filled = lastPercent_ / 5;
    line += " [" + std::string(static_cast<size_t>(filled), '#') +
            std::string(static_cast<size_t>(20 - filled), ' ') + "] " +
            std::to_string(lastPercent_) + "%";
  }
  std::fputs(line.c_str(), stderr);
  std::fflush(stderr);
  lineShown_ = true;
}

void TerminalHost::SetStatus(std::string_view text) {
  status_ = text;
  lastPercent_ = -1;
  Draw();
}

void TerminalHost::ReportProgress(uint64_t total, uint64_t done) {
  if (!showProgress_) return;
  int percent = total == 0 ? 0 : static_cast<int>(std::min<uint64_t>(100, done * 100 / total));
  if (percent == lastPercent_) return;
  lastPercent_ = percent;
  Draw();
}

bool TerminalHost::PollAbort() {
  if (Interrupted() && !abortTaken_) {
    abortTaken_ = true;
    return true;
  }
  return false;
}

void TerminalHost::Notify(Notice notice) {
  const uint32_t bit = 1u << static_cast<unsigned>(notice);
  if (answers_.quiet || (noticesGiven_ & bit)) return;
  noticesGiven_ |= bit;
  ClearLine();
  switch (notice) {
    case Notice::kJpegReadAs256Colours:
      std::cerr << "pxm: note: JPEG pictures are read as 256 colours (ReadJpegRgb is 0); "
                   "--set ReadJpegRgb=1 reads them in full colour\n";
      break;
  }
}

int TerminalHost::ShowMessage(std::string_view text) {
  ClearLine();
  std::cerr << text << '\n';
  return kIdOk;
}

bool TerminalHost::Ask(std::string_view question) {
  if (answers_.yes) return *answers_.yes;
  if (!interactive_) return false;
  ClearLine();
  std::cerr << question << " [y/N] " << std::flush;
  std::string reply;
  if (!std::getline(std::cin, reply)) return false;
  return !reply.empty() && (reply[0] == 'y' || reply[0] == 'Y');
}

int TerminalHost::AskYesNo(std::string_view text) { return Ask(text) ? kIdYes : kIdNo; }

bool TerminalHost::ConfirmOverwrite(std::string_view path) {
  return Ask(std::string(path) + " exists. Write over it?");
}

std::optional<uint32_t> TerminalHost::SelectImage(std::span<const std::string>, uint32_t) {
  return answers_.image.value_or(0);
}

std::optional<std::string> TerminalHost::GetComment(std::string_view,
                                                    std::string_view prefilled) {
  return answers_.comment ? *answers_.comment : std::string(prefilled);
}

NextFileAnswer TerminalHost::NextFile(std::string_view, std::string_view) {
  if (nextFile_ < answers_.nextFiles.size())
    return {NextFileAnswer::Kind::kFile, answers_.nextFiles[nextFile_++]};
  return {NextFileAnswer::Kind::kOk, {}};
}

std::optional<std::string> TerminalHost::SaveName(std::string_view suggested) {
  return answers_.output ? *answers_.output : std::string(suggested);
}

}  // namespace pxm::cli
