#include "batch/get_info.h"

#include "core/error_codes.h"

namespace pxm {

int GetInfo(Host& host, const std::string& path, bool report, InfoResult& result,
            FormatTableView table) {
  Operation op(host, table);
  result = InfoResult{};
  int row = FindFormatIn(table, path);
  result.row = row;
  if (row < 0) return kUnsupportedFormat;
  const FormatEntry& entry = table[static_cast<size_t>(row)];
  if ((entry.caps & kCapsMotion) && !(entry.caps & kCapsReadsFrames)) return kUnsupportedFunction;
  int code;
  try {
    code = OpenSource(op, path, row);
    if (code == kOk && report && entry.listImages) {
      result.reportCode = entry.listImages(op.info, path, result.report);
    }
  } catch (const std::bad_alloc&) {
    code = kMemoryError;
  }
  PostRead(op.info);
  op.info.putLine = nullptr;
  op.info.host = nullptr;
  result.info = op.info;
  return code;
}

}  // namespace pxm
