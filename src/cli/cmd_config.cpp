#include <iostream>

#include "cli/context.h"
#include "config/ini.h"
#include "config/settings.h"
#include "core/error_codes.h"
#include "core/strings.h"

namespace pxm::cli {

namespace {

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

}  // namespace

Command SetupConfig(CLI::App& parent, Context& ctx) {
  auto action = std::make_shared<std::string>();
  Command c;
  c.app = parent.add_subcommand(
      "config", "PXM.INI: `path` where it lives, `show` the lines the writer would write, "
                "`write` the file as the program does at shutdown");
  c.app->add_option("action", *action, "path, show or write")
      ->required()
      ->check(CLI::IsMember({"path", "show", "write"}));
  c.run = [&ctx, action]() { return RunConfig(ctx, *action); };
  return c;
}

}  // namespace pxm::cli
