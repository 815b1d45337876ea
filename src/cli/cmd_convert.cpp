#include <iostream>

#include "batch/convert.h"
#include "cli/context.h"
#include "config/settings.h"

namespace pxm::cli {

Command SetupConvert(CLI::App& parent, Context& ctx) {
  auto files = std::make_shared<std::vector<std::string>>();
  Command c;
  c.app = parent.add_subcommand(
      "convert", "Convert each file into the --to format (prints SOURCE -> OUTPUT)");
  c.app->add_option("files", *files, "Picture files")->required()->type_name("FILE");
  c.run = [&ctx, files]() {
    int destRow = DestinationRow(ctx);
    if (destRow < 0) return kUsageError;
    if (!ctx.options.output.empty()) {
      if (files->size() != 1) {
        std::cerr << "pxm: --output needs exactly one input file\n";
        return kUsageError;
      }
      // --output is the save dialog's answer, so the dialog is put in the way of the name.
      CurrentSettings().PromptforDestName = 1;
    }
    ConvertOptions options;
    options.destinationDirectory = ctx.options.destDir;
    return RunOverFiles(ctx, *files, [&](const std::string& path) {
      return Convert(*ctx.host, path, destRow, options);
    });
  };
  return c;
}

}  // namespace pxm::cli
