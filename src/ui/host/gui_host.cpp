#include "host/gui_host.h"

#include <QApplication>
#include <QClipboard>
#include <QCursor>
#include <QFileDialog>
#include <QImage>
#include <QWidget>

#include "common/qt_text.h"
#include "core/bytes.h"
#include "core/error_codes.h"
#include "core/names.h"
#include "core/strings.h"
#include "dialogs/message_box.h"
#include "dialogs/question_dialogs.h"
#include "main_window/status_cells.h"

namespace pxm::ui {

// Lifts the batch's input filter and wait cursor for as long as a dialog is open.
class GuiHost::DialogScope {
 public:
  explicit DialogScope(GuiHost& host) : host_(host), wasActive_(host.filter_.Active()) {
    host_.filter_.SetActive(false);
    ++host_.suspended_;
    if (host_.waitCursors_ > 0) QApplication::setOverrideCursor(Qt::ArrowCursor);
  }
  ~DialogScope() {
    if (host_.waitCursors_ > 0) QApplication::restoreOverrideCursor();
    --host_.suspended_;
    host_.filter_.SetActive(wasActive_);
    host_.filter_.TakeClick();  // the clicks that answered the dialog stop nothing
    host_.sinceEvents_.restart();
  }
  DialogScope(const DialogScope&) = delete;
  DialogScope& operator=(const DialogScope&) = delete;

 private:
  GuiHost& host_;
  bool wasActive_;
};

GuiHost::GuiHost(QWidget* owner, StatusCells* cells) : owner_(owner), cells_(cells) {
  qApp->installEventFilter(&filter_);
  sinceEvents_.start();
}

GuiHost::~GuiHost() {
  qApp->removeEventFilter(&filter_);
  while (waitCursors_ > 0) SetWaitCursor(false);
}

void GuiHost::BeginBatch() {
  aborted_ = false;
  filter_.TakeClick();
  filter_.SetActive(true);
  sinceEvents_.restart();
}

void GuiHost::EndBatch() {
  filter_.SetActive(false);
  filter_.TakeClick();
  total_ = done_ = 0;
  if (cells_) cells_->SetProgress(0, 0);
}

void GuiHost::SetStatus(std::string_view text) {
  QString qtext = ToQt(text);
  if (cells_) cells_->SetMessage(qtext);
  // The count restarts whenever the text changes.
  total_ = done_ = 0;
  if (cells_) cells_->SetProgress(0, 0);
  emit statusChanged(qtext);
}

void GuiHost::ReportProgress(uint64_t total, uint64_t done) {
  // Only remembered here: the bar is drawn at the next look at the event queue, not per row.
  total_ = total;
  done_ = done;
}

void GuiHost::Tick() {
  if (cells_) cells_->SetProgress(total_, done_);
  QCoreApplication::processEvents(QEventLoop::AllEvents);
  sinceEvents_.restart();
}

bool GuiHost::PollAbort() {
  if (sinceEvents_.elapsed() >= kEventInterval) Tick();
  if (filter_.TakeClick()) {
    aborted_ = true;
    return true;
  }
  return false;
}

void GuiHost::Beep() {
  QApplication::beep();
}

int GuiHost::ShowMessage(std::string_view text) {
  DialogScope scope(*this);
  return ShowMessageBox(owner_, text);
}

int GuiHost::AskYesNo(std::string_view text) {
  DialogScope scope(*this);
  return AskYesNoBox(owner_, text);
}

std::optional<uint32_t> GuiHost::SelectImage(std::span<const std::string> names,
                                             uint32_t /*imageCount*/) {
  DialogScope scope(*this);
  return SelectImageDialog(owner_, file_, names);
}

std::optional<std::string> GuiHost::GetComment(std::string_view fileName,
                                               std::string_view prefilled) {
  DialogScope scope(*this);
  return CommentDialog(owner_, fileName, prefilled);
}

NextFileAnswer GuiHost::NextFile(std::string_view message, std::string_view directory) {
  DialogScope scope(*this);
  return NextFileDialog(owner_, message, directory);
}

std::optional<std::string> GuiHost::SaveName(std::string_view suggested) {
  DialogScope scope(*this);
  // The overwrite box asks about existing files itself, after the name has its extension.
  QString chosen = QFileDialog::getSaveFileName(
      owner_, ToQt(MessageWithName(kStrSaveAs, NamePart(suggested))), PathToQt(suggested),
      QString(), nullptr, QFileDialog::DontUseNativeDialog | QFileDialog::DontConfirmOverwrite);
  if (chosen.isEmpty()) return std::nullopt;
  return PathFromQt(chosen);
}

bool GuiHost::ConfirmOverwrite(std::string_view path) {
  DialogScope scope(*this);
  return AskYesNoBox(owner_, MessageWithName(kStrOverwriteQuestion, path)) == kIdYes;
}

int GuiHost::SetClipboard(const ClipboardPicture& picture) {
  // The packed bitmap becomes a bitmap file by the 14-byte file header in front of it.
  const std::vector<uint8_t>& dib = picture.packedDib;
  if (dib.size() < 40) return kUnsupportedFunction;
  uint32_t bits = LoadLe16(dib.data() + 14);
  uint32_t used = LoadLe32(dib.data() + 32);
  uint32_t colours = bits <= 8 ? (used ? used : (1u << bits)) : 0;
  uint32_t offset = 14 + LoadLe32(dib.data()) + colours * 4;
  QByteArray file;
  file.reserve(static_cast<qsizetype>(dib.size() + 14));
  uint8_t header[14] = {'B', 'M'};
  StoreLe32(header + 2, static_cast<uint32_t>(dib.size() + 14));
  StoreLe32(header + 10, offset);
  file.append(reinterpret_cast<const char*>(header), 14);
  file.append(reinterpret_cast<const char*>(dib.data()), static_cast<qsizetype>(dib.size()));
  QImage image = QImage::fromData(file, "BMP");
  if (image.isNull()) return kMemoryError;
  QApplication::clipboard()->setImage(image);
  return kOk;
}

void GuiHost::SetWaitCursor(bool on) {
  if (on) {
    QApplication::setOverrideCursor(Qt::WaitCursor);
    ++waitCursors_;
  } else if (waitCursors_ > 0) {
    QApplication::restoreOverrideCursor();
    --waitCursors_;
  }
}

void GuiHost::FileWritten(std::string_view path) {
  emit fileWritten(PathToQt(path));
}

}  // namespace pxm::ui
