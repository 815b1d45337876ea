#include "batch/operation.h"

#include "core/error_codes.h"
#include "core/names.h"
#include "core/platform.h"
#include "core/strings.h"

namespace pxm {

unsigned SpillPolicy() {
  const Settings& settings = CurrentSettings();
  const int32_t drive = settings.VirtualMemoryDrive;
  const bool hasDrive = (drive >= 'a' && drive <= 'z') || (drive >= 'A' && drive <= 'Z');
  return (settings.UseVirtualMemoryAlways ? kStoreSpillAlways : 0u) |
         (hasDrive ? 0u : kStoreNoSpill);
}

int ChooseImage(Operation& op, int row, const std::string& /*path*/) {
  const FormatEntry& entry = op.table[static_cast<size_t>(row)];
  if (!(entry.caps & kCapsMultiImage) || op.info.imageCount <= 1) return kOk;
  std::vector<std::string> names;
  for (uint32_t i = 0; i < op.info.imageCount && i < 128; ++i)
    names.push_back(FormatText("Image %u", i + 1));
  auto chosen = op.host.SelectImage(names, op.info.imageCount);
  if (!chosen) return kCancelled;
  op.info.imageIndex = *chosen;
  return kOk;
}

int OpenSource(Operation& op, const std::string& path, int& row) {
  row = FindFormatIn(op.table, path);
  if (row < 0) return kUnsupportedFormat;
  const FormatEntry& entry = op.table[static_cast<size_t>(row)];
  if (!entry.info) return kUnsupportedFunction;
  if (int code = entry.info(op.info, path, 0)) return code;
  if (int code = ChooseImage(op, row, path)) return code;
  if (op.info.imageIndex != 0)
    if (int code = entry.info(op.info, path, 0)) return code;
  return kOk;
}

int ReadSource(Operation& op, int row, const std::string& path, LineSink sink) {
  const FormatEntry& entry = op.table[static_cast<size_t>(row)];
  if (!entry.read) return kUnsupportedFunction;
  op.host.SetStatus(MessageWithName(kStrReading, path));
  op.host.ReportProgress(0, 0);
  op.info.putLine = std::move(sink);
  op.store.rowsDone = 0;
  op.store.ClearAbort();
  try {
    return entry.read(op.info, path);
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
}

int WriteDestination(Operation& op, int destRow, const std::string& output, LineSource source,
                     std::string_view status) {
  const FormatEntry& entry = op.table[static_cast<size_t>(destRow)];
  if (!entry.write) return kUnsupportedFunction;
  if (status.empty())
    op.host.SetStatus(MessageWithName(kStrWriting, output));
  else
    op.host.SetStatus(status);
  op.host.ReportProgress(0, 0);
  op.store.rowsDone = 0;
  SetText(op.info.fileName, output, kMaxNameLength);
  op.info.getLine = std::move(source);

  return WriteThroughTemporary(op.host, entry, op.info, output);
}

int WriteThroughTemporary(Host& host, const std::string& output,
                          const std::function<int(const std::string& path)>& write,
                          ImageInfo* info) {
  auto temporary = platform::CreateTemporaryFileIn(DirectoryPart(output), NamePart(output));
  if (!temporary) return kCreateError;
  std::vector<CompanionFile> none;
  std::vector<CompanionFile>& companions = info ? info->companions : none;
  if (info) info->outputPath = output;
  companions.clear();
  int code;
  try {
    code = write(*temporary);
  } catch (const std::bad_alloc&) {
    code = kMemoryError;
  }
  // Companion files (a palette file beside a picture) take their names just before the output
  // does. Renames within one directory fail only when the directory changed under the write; a
  // failure then leaves the companions already renamed and gives 9.
  for (const CompanionFile& c : companions)
    if (code == kOk && !platform::ReplaceFile(c.temporary, c.final)) code = kRenameError;
  if (code == kOk && !platform::ReplaceFile(*temporary, output)) code = kRenameError;
  if (code != kOk)
    for (const CompanionFile& c : companions) platform::RemoveFile(c.temporary);
  if (info) info->outputPath.clear();
  companions.clear();
  if (code != kOk) {
    platform::RemoveFile(*temporary);
    return code;
  }
  host.FileWritten(output);
  return kOk;
}

int WriteThroughTemporary(Host& host, const FormatEntry& entry, ImageInfo& info,
                          const std::string& output) {
  if (entry.caps & kCapsClipboard) {
    try {
      return entry.write(info, output);
    } catch (const std::bad_alloc&) {
      return kMemoryError;
    }
  }
  return WriteThroughTemporary(
      host, output, [&](const std::string& path) { return entry.write(info, path); }, &info);
}

}  // namespace pxm
