#pragma once

#include "core/host.h"

namespace pxm {

// The wait cursor for the length of one file's work, taken down on every way out.
class WaitCursor {
 public:
  explicit WaitCursor(Host& host) : host_(host) { host_.SetWaitCursor(true); }
  ~WaitCursor() { host_.SetWaitCursor(false); }
  WaitCursor(const WaitCursor&) = delete;
  WaitCursor& operator=(const WaitCursor&) = delete;

 private:
  Host& host_;
};

}  // namespace pxm
