#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/host.h"
#include "core/image_info.h"

namespace pxm {

// The status cell, progress bar and abort check of one processing pass. The engines see only the
// record, so they ask its host directly; the drivers bind quiet row callbacks, and this is the
// one poll per row.
class Stage {
 public:
  Stage(const ImageInfo& info, std::string_view name) : host_(HostOf(info)), name_(name) {}

  // Shows string `stringId` filled with the name and restarts the progress count at 0 of total.
  void Begin(int stringId, uint64_t total);
  // Reports `done` of the pass's total and takes one user event; answers true (after the beep)
  // when the user clicked to stop.
  bool Poll(uint64_t done);

 private:
  Host& host_;
  std::string name_;
  uint64_t total_ = 0;
};

}  // namespace pxm
