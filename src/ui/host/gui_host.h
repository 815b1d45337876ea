#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QString>

#include "core/host.h"
#include "host/abort_filter.h"

class QWidget;

// The desktop program's Host: status texts and progress in the status bar, the abort check by
// the application's event filter, the program's dialogs for every question.
namespace pxm::ui {

class StatusCells;

class GuiHost : public QObject, public Host {
  Q_OBJECT
 public:
  // How long the abort check lets events wait: enough to paint and to notice a click, without
  // spending a row's time on the event queue.
  static constexpr int kEventInterval = 30;  // milliseconds

  GuiHost(QWidget* owner, StatusCells* cells);
  ~GuiHost() override;

  // A batch runs between Begin and End: input is swallowed, a click asks it to stop.
  void BeginBatch();
  void EndBatch();
  bool InBatch() const { return filter_.Active() || suspended_ > 0; }
  // The user clicked to stop the batch.
  bool AbortRequested() const override { return aborted_; }
  // The file the batch has in hand, named in the dialogs that ask about it.
  void SetFileInHand(std::string name) { file_ = std::move(name); }

  void SetStatus(std::string_view text) override;
  void ReportProgress(uint64_t total, uint64_t done) override;
  bool PollAbort() override;
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

 signals:
  // Every status text, as the status bar shows it.
  void statusChanged(const QString& text);
  // A writer finished `path`.
  void fileWritten(const QString& path);

 private:
  // Shows the pending progress and lets paint and timer events through.
  void Tick();
  // While a dialog is open in the middle of a batch, input reaches it as usual.
  class DialogScope;

  QPointer<QWidget> owner_;
  StatusCells* cells_;
  AbortFilter filter_;
  QElapsedTimer sinceEvents_;
  uint64_t total_ = 0;
  uint64_t done_ = 0;
  bool aborted_ = false;
  int suspended_ = 0;
  int waitCursors_ = 0;
  std::string file_;  // the file in hand, for the dialogs' texts
};

}  // namespace pxm::ui
