#include "batch/picture_command.h"

#include "batch/output_name.h"
#include "core/error_codes.h"
#include "core/sinks.h"
#include "thumbs/auto_thumbnail.h"

namespace pxm {

int RunPictureCommand(Host& host, int destRow, FormatTableView table,
                      const std::function<int(Operation& op)>& work) {
  WaitCursor cursor(host);
  if (destRow < 0 || destRow >= kFormatCount) return kUnsupportedFormat;
  Operation op(host, table);
  int code;
  try {
    code = work(op);
  } catch (const std::bad_alloc&) {
    code = kMemoryError;
  }
  PostRead(op.info);
  return op.store.Explain(code);
}

int LoadPicture(Operation& op, const std::string& source, const FormatEntry* destination,
                const LoadPlan& plan) {
  int row;
  if (int code = OpenSource(op, source, row)) return code;
  if (plan.accept) {
    if (int code = plan.accept(op.info)) return code;
  } else if (destination && destination->maxBits < op.info.bits) {
    return kTooManyColours;
  }
  const uint32_t bits = plan.storeBits ? plan.storeBits(op.info.bits) : op.info.bits;
  if (int code = op.store.Create(op.info.width, op.info.depth, bits,
                                  plan.storeOptions | SpillPolicy()))
    return code;
  LineSink sink = plan.sink ? plan.sink(op.store, op.info)
                            : ProgressRowSink(op.store, static_cast<uint64_t>(op.info.depth));
  if (int code = ReadSource(op, row, source, std::move(sink))) return code;
  if (int code = PostRead(op.info)) return code;
  op.info.sourceName = op.info.fileName;
  return kOk;
}

int SaveResult(Operation& op, const std::string& source, int destRow,
               const std::string& destinationDirectory, LineSource rows,
               std::string_view status) {
  const FormatEntry& destination = op.table[static_cast<size_t>(destRow)];
  std::string output;
  if (BuildOutputName(op.host, output, source, destinationDirectory, destination) != kNameGoOn)
    return kCancelled;
  if (!destination.write) return kUnsupportedFunction;
  // The command's own source moves the progress bar too, row by row of the destination.
  const uint64_t total = static_cast<uint64_t>(op.info.depth);
  LineSource counted = [&store = op.store, total, rows = std::move(rows)](std::span<uint8_t> row,
                                                                          int32_t r) {
    store.ReportRowProgress(total);
    return rows(row, r);
  };
  int code = WriteDestination(op, destRow, output, std::move(counted), status);
  op.store.Free();
  if (code == kOk) AutoCreateThumbnail(op.host, output);
  return code;
}

}  // namespace pxm
