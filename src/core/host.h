#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace pxm {

// Button identifiers the message boxes answer with.
enum ButtonId : int { kIdOk = 1, kIdCancel = 2, kIdYes = 6, kIdNo = 7 };

// The answer of the next-file dialog that multi-part decoders show.
struct NextFileAnswer {
  enum class Kind { kFile, kOk, kCancel } kind = Kind::kOk;
  std::string path;  // the chosen file when kind is kFile
};

// A packed device-independent bitmap and its palette, as the clipboard writer hands them over.
struct ClipboardPicture {
  std::vector<uint8_t> packedDib;  // 40-byte information header, colour table, rows
  std::vector<uint8_t> palette;    // entries of red, green, blue and a zero flag byte
};

// Remarks the engine makes once in a while that are neither a question nor an error: a front end
// may tell the user, once.
enum class Notice {
  kJpegReadAs256Colours,  // a colour JPEG was reduced to 256 colours as `ReadJpegRgb` 0 asks
};

// Everything the engine knows of whoever runs it: the desktop program, `pxm`, or a test. Engine
// code never blocks on a terminal or a window by itself; it asks the host.
class Host {
 public:
  virtual ~Host() = default;

  // Status cell text ("Reading photo.bmp") and the progress cell (done of total).
  virtual void SetStatus(std::string_view text) = 0;
  virtual void ReportProgress(uint64_t total, uint64_t done) = 0;

  // The abort check: takes at most one pending user event and answers whether it was a click
  // that asks to stop.
  virtual bool PollAbort() = 0;
  // Whether the user asked to stop the whole batch (a click while a file was in hand, Ctrl-C):
  // the walk starts no further file.
  virtual bool AbortRequested() const { return false; }
  virtual void Beep() = 0;

  // The "MessageBox" and "YesnoBox" dialogs; they answer a ButtonId.
  virtual int ShowMessage(std::string_view text) = 0;
  virtual int AskYesNo(std::string_view text) = 0;

  // The select-image box over `names`; the chosen index, or nothing when cancelled.
  virtual std::optional<uint32_t> SelectImage(std::span<const std::string> names,
                                              uint32_t imageCount) = 0;
  // The comment dialog pre-filled with `prefilled`; the text, or nothing when cancelled.
  virtual std::optional<std::string> GetComment(std::string_view fileName,
                                                std::string_view prefilled) = 0;
  // The next-file dialog of multi-part files, listing `directory`.
  virtual NextFileAnswer NextFile(std::string_view message, std::string_view directory) = 0;
  // The save dialog, opened on `suggested`; the chosen path, or nothing when cancelled.
  virtual std::optional<std::string> SaveName(std::string_view suggested) = 0;
  // The overwrite box for an existing `path`: true = write over it.
  virtual bool ConfirmOverwrite(std::string_view path) = 0;

  // Puts a picture on the clipboard; answers an error code (5 where there is no clipboard).
  virtual int SetClipboard(const ClipboardPicture& picture) = 0;

  virtual void SetWaitCursor(bool on) = 0;
  // A file was written: the file list and thumbnails may refresh.
  virtual void FileWritten(std::string_view path) = 0;
  virtual void Notify(Notice) {}
};

// A host that shows nothing and answers every question with its default: the first image, the
// pre-filled comment, Ok in the next-file dialog, No to yes/no questions and to overwriting.
class QuietHost : public Host {
 public:
  void SetStatus(std::string_view) override {}
  void ReportProgress(uint64_t, uint64_t) override {}
  bool PollAbort() override { return false; }
  void Beep() override {}
  int ShowMessage(std::string_view) override { return kIdOk; }
  int AskYesNo(std::string_view) override { return kIdNo; }
  std::optional<uint32_t> SelectImage(std::span<const std::string>, uint32_t) override {
    return 0u;
  }
  std::optional<std::string> GetComment(std::string_view, std::string_view prefilled) override {
    return std::string(prefilled);
  }
  NextFileAnswer NextFile(std::string_view, std::string_view) override { return {}; }
  std::optional<std::string> SaveName(std::string_view) override { return std::nullopt; }
  bool ConfirmOverwrite(std::string_view) override { return false; }
  int SetClipboard(const ClipboardPicture&) override { return 5; }
  void SetWaitCursor(bool) override {}
  void FileWritten(std::string_view) override {}
};

// The host used when a record names none.
Host& SilentHost();

}  // namespace pxm
