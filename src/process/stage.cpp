#include "process/stage.h"

#include "core/strings.h"

namespace pxm {

void Stage::Begin(int stringId, uint64_t total) {
  total_ = total;
  host_.SetStatus(MessageWithName(stringId, name_));
  host_.ReportProgress(total, 0);
}

bool Stage::Poll(uint64_t done) {
  host_.ReportProgress(total_, done);
  if (!host_.PollAbort()) return false;
  host_.Beep();
  return true;
}

}  // namespace pxm
