#include "batch/copy_file.h"

#include <optional>
#include <vector>

#include "batch/operation.h"
#include "core/error_codes.h"
#include "core/file_io.h"
#include "core/names.h"
#include "core/platform.h"
#include "core/strings.h"
#include "formats/png_codec.h"

namespace pxm {
namespace {

constexpr std::string_view kCopyingText = "Copying %s";
constexpr std::string_view kMovingText = "Moving %s";
constexpr std::string_view kVerifyingText = "Verifying %s";
constexpr std::string_view kOntoItselfText = "Files cannot be moved or copied to themselves.";
constexpr std::string_view kMoveQuestion =
    "The Move option will delete your selected source files. Click on Yes to proceed or No to "
    "Cancel.";

// The copy under its temporary name, removed unless it was handed over.
class PendingCopy {
 public:
  explicit PendingCopy(std::string path) : path_(std::move(path)) {}
  ~PendingCopy() {
    if (!path_.empty()) platform::RemoveFile(path_);
  }
  PendingCopy(const PendingCopy&) = delete;
  PendingCopy& operator=(const PendingCopy&) = delete;
  const std::string& path() const { return path_; }
  void Release() { path_.clear(); }

 private:
  std::string path_;
};

// Reads `length` bytes of `in` chunk by chunk, looking for a click before each chunk and moving
// the progress bar; `each` takes every chunk and answers a code. The CRC of everything read is
// folded into `crc` when `crc` is given.
template <typename Each>
int ChunkLoop(Host& host, InputFile& in, uint64_t length, std::vector<uint8_t>& buffer,
              uint32_t* crc, Each each) {
  const uint64_t steps = CopySteps(length);
  uint64_t remaining = length;
  for (uint64_t step = 0; remaining > 0; ++step) {
    if (host.PollAbort()) {
      host.Beep();
      return kCancelled;
    }
    host.ReportProgress(steps, step);
    const size_t n = static_cast<size_t>(std::min<uint64_t>(remaining, kCopyChunk));
    if (in.Read(buffer.data(), n) != n) return kReadError;
    std::span<const uint8_t> chunk(buffer.data(), n);
    if (crc) *crc = PngUpdateCrc(*crc, chunk);
    if (int code = each(chunk)) return code;
    remaining -= n;
  }
  return kOk;
}

int Copy(Host& host, const std::string& file, const std::string& destinationDirectory,
         int options) {
  std::vector<uint8_t> buffer(kCopyChunk);
  InputFile in;
  if (!in.Open(file)) return kOpenError;
  const std::string destination = CopyDestination(file, destinationDirectory);
  if (platform::SameFile(file, destination)) return kCancelled;
  auto temporary =
      platform::CreateTemporaryFileIn(DirectoryPart(destination), NamePart(destination));
  if (!temporary) return kOpenError;
  PendingCopy pending(*temporary);
  OutputFile out;
  if (!out.Create(pending.path())) return kOpenError;

  const uint64_t length = in.Size();
  host.SetStatus(FillText((options & kCopyShowsCopying) ? kCopyingText : kMovingText, "%s", file));
  host.ReportProgress(0, 0);
  const bool verify = (options & kCopyVerifies) != 0;
  uint32_t sourceCrc = 0;
  int code = ChunkLoop(host, in, length, buffer, verify ? &sourceCrc : nullptr,
                       [&out](std::span<const uint8_t> chunk) {
                         return out.Write(chunk.data(), chunk.size()) ? kOk : kWriteError;
                       });
  if (code != kOk) return code;
  if (!out.Commit()) return kWriteError;
  in.Close();

  if (verify) {
    InputFile back;
    if (!back.Open(pending.path())) return kOpenError;
    host.SetStatus(FillText(kVerifyingText, "%s", file));
    host.ReportProgress(0, 0);
    uint32_t copyCrc = 0;
    code = ChunkLoop(host, back, length, buffer, &copyCrc,
                     [](std::span<const uint8_t>) { return kOk; });
    if (code != kOk) return code;
    if (copyCrc != sourceCrc) return kVerifyError;
  }

  platform::CopyModificationTime(file, pending.path());
  if (!platform::ReplaceFile(pending.path(), destination)) return kCreateError;
  pending.Release();
  host.FileWritten(destination);
  // The source goes only now that its copy is complete and, when asked, checked.
  if ((options & kCopyDeletesSource) && !platform::RemoveFile(file)) return kRenameError;
  return kOk;
}

}  // namespace

std::string CopyDestination(const std::string& file, const std::string& destinationDirectory) {
  return JoinPath(destinationDirectory, NamePart(file));
}

uint64_t CopySteps(uint64_t length) {
  uint64_t steps = length / kCopyChunk;
  if (length % kCopyChunk == 0 && steps > 0) --steps;
  return steps > 0 ? steps : 1;
}

int ConfirmCopy(Host& host, std::span<const std::string> files,
                const std::string& destinationDirectory, int options) {
  for (const std::string& file : files) {
    if (platform::SameFile(file, CopyDestination(file, destinationDirectory))) {
      host.ShowMessage(kOntoItselfText);
      return kCancelled;
    }
  }
  if ((options & kCopyDeletesSource) && host.AskYesNo(kMoveQuestion) != kIdYes) return kCancelled;
  return kOk;
}

int CopyTaggedFile(Host& host, const std::string& file, const std::string& destinationDirectory,
                   int options) {
  WaitCursor cursor(host);
  try {
    return Copy(host, file, destinationDirectory, options);
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
}

}  // namespace pxm
