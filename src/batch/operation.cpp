#include "batch/operation.h"

#include "core/error_codes.h"
#include "core/names.h"
#include "core/platform.h"
#include "core/strings.h"

namespace pxm {

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

int WriteThroughTemporary(Host& host, const FormatEntry& entry, ImageInfo& info,
                          const std::string& output) {
  if (entry.caps & kCapsClipboard) {
    try {
      return entry.write(info, output);
    } catch (const std::bad_alloc&) {
      return kMemoryError;
    }
  }
  auto temporary = platform::CreateTemporaryFileIn(DirectoryPart(output), NamePart(output));
  if (!temporary) return kCreateError;
  int code;
  info.outputPath = output;
  info.companions.clear();
  try {
    code = entry.write(info, *temporary);
  } catch (const std::bad_alloc&) {
    code = kMemoryError;
  }
  // Companion files (a palette file beside a picture) take their names just before the output
  // does. Renames within one directory fail only when the directory changed under the write; a
  // failure then leaves the companions already renamed and gives 9.
  for (const CompanionFile& c : info.companions)
    if (code == kOk && !platform::ReplaceFile(c.temporary, c.final)) code = kRenameError;
  if (code == kOk && !platform::ReplaceFile(*temporary, output)) code = kRenameError;
  if (code != kOk) {
    for (const CompanionFile& c : info.companions) platform::RemoveFile(c.temporary);
  }
  info.outputPath.clear();
  info.companions.clear();
  if (code != kOk) {
    platform::RemoveFile(*temporary);
    return code;
  }
  host.FileWritten(output);
  return kOk;
}

}  // namespace pxm
