#include <iostream>

#include "batch/transform_file.h"
#include "cli/context.h"
#include "config/settings.h"
#include "process/transform.h"

namespace pxm::cli {

Command SetupTransform(CLI::App& parent, Context& ctx) {
  auto files = std::make_shared<std::vector<std::string>>();
  auto mode = std::make_shared<std::string>();
  Command c;
  c.app = parent.add_subcommand(
      "transform", "Rotate or flip each file into the --to format (prints SOURCE -> OUTPUT)");
  c.app->add_option("--mode", *mode,
                    "rotate90 (anticlockwise), rotate180, rotate270 (clockwise), flip-h, flip-v, "
                    "or the number 101-105; default: TransformMode")
      ->type_name("MODE");
  c.app->add_option("files", *files, "Picture files")->required()->type_name("FILE");
  c.run = [&ctx, files, mode]() {
    int32_t chosen = CurrentSettings().TransformMode;
    if (!mode->empty()) {
      auto parsed = ParseTransformMode(*mode);
      if (!parsed) {
        std::cerr << "pxm: --mode " << *mode << ": not a transform\n";
        return kUsageError;
      }
      chosen = *parsed;
    }
    int destRow = DestinationRow(ctx);
    if (destRow < 0 || !ApplyOutputOption(ctx, files->size())) return kUsageError;
    return RunOverFiles(ctx, *files, [&](Host& host, const std::string& path) {
      return TransformFile(host, path, destRow, chosen, ctx.options.destDir);
    });
  };
  return c;
}

}  // namespace pxm::cli
