#include "config/settings.h"

namespace pxm {

Settings& CurrentSettings() {
  static Settings settings;
  return settings;
}

ScopedSettings::ScopedSettings() : saved_(CurrentSettings()) { CurrentSettings() = Settings{}; }

ScopedSettings::~ScopedSettings() { CurrentSettings() = saved_; }

}  // namespace pxm
