#include <iostream>

#include "cli/context.h"
#include "config/ini.h"
#include "config/settings.h"
#include "core/error_codes.h"
#include "core/strings.h"

namespace pxm::cli {

int RunConfig(Context& ctx, const std::string& action) {
  if (ctx.iniPath.empty()) {
    std::cerr << "pxm: there is no place for PXM.INI: set HOME or XDG_CONFIG_HOME, or use --ini\n";
    return kOpenError;
  }
  if (action == "path") {
    std::cout << ctx.iniPath << '\n';
    return 0;
  }
  if (action == "show") {
    for (const std::string& line : ConfigurationLines(CurrentSettings(), ctx.recent))
      std::cout << line << '\n';
    return 0;
  }
  if (!WriteConfiguration(ctx.iniPath, CurrentSettings(), ctx.recent)) {
    ReportFailure(ctx, ctx.iniPath, kCreateError);
    return kCreateError;
  }
  if (!ctx.options.quiet) std::cout << ctx.iniPath << '\n';
  return 0;
}

}  // namespace pxm::cli
