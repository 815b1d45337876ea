#include "batch/convert.h"

#include "batch/output_name.h"
#include "batch/picture_command.h"
#include "core/error_codes.h"
#include "core/names.h"
#include "core/sources.h"
#include "core/strings.h"
#include "thumbs/auto_thumbnail.h"

namespace pxm {
namespace {

int ConvertStill(Operation& op, const std::string& source, int destRow,
                 const ConvertOptions& options) {
  // Convert never reduces colours itself: a picture too deep for the destination is refused and
  // the user dithers or reduces it first.
  if (int code = LoadPicture(op, source, &op.table[static_cast<size_t>(destRow)])) return code;
  return SaveResult(op, source, destRow, options.destinationDirectory,
                    AbortableRowSource(op.store));
}

// The motion writer goes first and leaves the record ready for frames (putLine is its frame
// sink); the source's reader then delivers every frame to it.
int WriteFrames(Operation& op, const FormatEntry& entry, const FormatEntry& destination,
                const std::string& source, const std::string& path) {
  if (int code = destination.write(op.info, path)) return code;
  if (!entry.read) {
    if (op.info.finishWrite) op.info.finishWrite();
    op.info.Clear();
    return kUnsupportedFunction;
  }
  op.host.SetStatus(MessageWithName(kStrReading, source));
  op.store.rowsDone = 0;
  if (int code = entry.read(op.info, source)) return code;
  return op.info.finishWrite ? op.info.finishWrite() : kOk;
}

int ConvertMotion(Operation& op, const std::string& source, int destRow,
                  const ConvertOptions& options) {
  const FormatEntry& destination = op.table[static_cast<size_t>(destRow)];
  int row = FindFormatIn(op.table, source);
  if (row < 0) return kUnsupportedFormat;
  const FormatEntry& entry = op.table[static_cast<size_t>(row)];
  const uint32_t readable = kCapsMotion | kCapsReadsFrames;
  if ((entry.caps & readable) != readable) return kUnsupportedFunction;
  if (!destination.write) return kUnsupportedFormat;  // 8 here, as it always has been

  op.info.imageIndex = kAllFrames;
  SetText(op.info.fileName, NamePart(source), kMaxNameLength);
  op.info.sourceName = op.info.fileName;
  std::string output;
  if (int answer = BuildOutputName(op.host, output, source, options.destinationDirectory,
                                   destination);
      answer != kNameGoOn)
    return answer;

  // Frames go into a temporary file too, renamed over the output only once the last frame is
  // in: a failed or cancelled motion write leaves nothing behind.
  int code = WriteThroughTemporary(
      op.host, output,
      [&](const std::string& path) { return WriteFrames(op, entry, destination, source, path); },
      &op.info);
  if (code == kOk) AutoCreateThumbnail(op.host, output);
  return code;
}

}  // namespace

int Convert(Host& host, const std::string& source, int destRow, const ConvertOptions& options,
            FormatTableView table) {
  if (destRow >= 0 && destRow < kFormatCount &&
      (table[static_cast<size_t>(destRow)].caps & kCapsMotion)) {
    WaitCursor cursor(host);
    Operation op(host, table);
    try {
      return ConvertMotion(op, source, destRow, options);
    } catch (const std::bad_alloc&) {
      return kMemoryError;
    }
  }
  return RunPictureCommand(host, destRow, table, [&](Operation& op) {
    return ConvertStill(op, source, destRow, options);
  });
}

}  // namespace pxm
