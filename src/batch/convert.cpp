#include "batch/convert.h"

#include "batch/output_name.h"
#include "core/error_codes.h"
#include "core/names.h"
#include "core/sinks.h"
#include "core/sources.h"
#include "core/strings.h"
#include "thumbs/auto_thumbnail.h"

namespace pxm {
namespace {

int ConvertStill(Operation& op, const std::string& source, int destRow,
                 const ConvertOptions& options) {
  const FormatEntry& destination = op.table[static_cast<size_t>(destRow)];
  int row;
  if (int code = OpenSource(op, source, row)) return code;
  // Convert never reduces colours itself: the user dithers or reduces first.
  if (destination.maxBits < op.info.bits) return kTooManyColours;
  if (int code = op.store.Create(op.info.width, op.info.depth, op.info.bits)) return code;

  const uint64_t total = static_cast<uint64_t>(op.info.depth);
  if (int code = ReadSource(op, row, source, ProgressRowSink(op.store, total))) return code;
  if (int code = PostRead(op.info)) return code;
  op.info.sourceName = op.info.fileName;

  std::string output;
  if (BuildOutputName(op.host, output, source, options.destinationDirectory, destination) !=
      kNameGoOn)
    return kCancelled;
  if (!destination.write) return kUnsupportedFunction;
  int code = WriteDestination(op, destRow, output, ProgressRowSource(op.store, total));
  op.store.Free();
  if (code == kOk) AutoCreateThumbnail(op.host, output);
  return code;
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

  // The writer goes first and leaves the record ready for frames: putLine is its frame sink.
  if (int code = destination.write(op.info, output)) return code;
  if (!entry.read) {
    if (op.info.finishWrite) op.info.finishWrite();
    op.info.Clear();
    return kUnsupportedFunction;
  }
  op.host.SetStatus(MessageWithName(kStrReading, source));
  op.store.rowsDone = 0;
  if (int code = entry.read(op.info, source)) return code;
  if (op.info.finishWrite) op.info.finishWrite();
  op.host.FileWritten(output);
  AutoCreateThumbnail(op.host, output);
  return kOk;
}

}  // namespace

int Convert(Host& host, const std::string& source, int destRow, const ConvertOptions& options,
            FormatTableView table) {
  WaitCursor cursor(host);
  Operation op(host, table);
  if (destRow < 0 || destRow >= kFormatCount) return kUnsupportedFormat;
  try {
    if (table[static_cast<size_t>(destRow)].caps & kCapsMotion)
      return ConvertMotion(op, source, destRow, options);
    int code = ConvertStill(op, source, destRow, options);
    PostRead(op.info);  // a reader's own file goes whatever happened after it was made
    return code;
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
}

}  // namespace pxm
