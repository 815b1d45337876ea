#include <iostream>

#include "batch/crop_file.h"
#include "cli/context.h"

namespace pxm::cli {

Command SetupCrop(CLI::App& parent, Context& ctx) {
  auto files = std::make_shared<std::vector<std::string>>();
  auto rect = std::make_shared<std::string>();
  Command c;
  c.app = parent.add_subcommand(
      "crop", "Save a rectangle of each file in the --to format (prints SOURCE -> OUTPUT)");
  c.app->add_option("--rect", *rect,
                    "Left, top, width and depth in image pixels; cut at the picture's edges")
      ->required()
      ->type_name("X,Y,W,H");
  c.app->add_option("files", *files, "Picture files")->required()->type_name("FILE");
  c.run = [&ctx, files, rect]() {
    std::vector<uint32_t> n;
    if (!ParseNumbers(*rect, ',', 4, n) || n[2] == 0 || n[3] == 0) {
      std::cerr << "pxm: --rect needs X,Y,W,H with a width and depth of at least 1\n";
      return kUsageError;
    }
    const CropRect chosen{n[0], n[1], n[2], n[3]};
    int destRow = DestinationRow(ctx);
    if (destRow < 0 || !ApplyOutputOption(ctx, files->size())) return kUsageError;
    return RunOverFiles(ctx, *files, [&](Host& host, const std::string& path) {
      return CropFile(host, path, destRow, chosen, ctx.options.destDir);
    });
  };
  return c;
}

}  // namespace pxm::cli
