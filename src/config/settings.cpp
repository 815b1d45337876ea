#include "config/settings.h"

namespace pxm {
namespace {

// The copy of the operation running on this thread, if any. Nothing else about settings is
// per thread: the process-wide object is only ever changed between operations.
thread_local Settings* tOperationSettings = nullptr;

}  // namespace

Settings& ProcessSettings() {
  static Settings settings;
  return settings;
}

Settings& CurrentSettings() {
  return tOperationSettings ? *tOperationSettings : ProcessSettings();
}

OperationSettings::OperationSettings(const Settings& from)
    : copy_(from), previous_(tOperationSettings) {
  tOperationSettings = &copy_;
}

OperationSettings::~OperationSettings() { tOperationSettings = previous_; }

ScopedSettings::ScopedSettings() : saved_(ProcessSettings()) { ProcessSettings() = Settings{}; }

ScopedSettings::~ScopedSettings() { ProcessSettings() = saved_; }

}  // namespace pxm
