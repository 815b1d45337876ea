#include "core/host.h"

namespace pxm {

Host& SilentHost() {
  // Stateless: it only answers defaults, so one shared instance is safe.
  static QuietHost host;
  return host;
}

}  // namespace pxm
