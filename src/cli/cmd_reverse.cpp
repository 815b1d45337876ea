#include "batch/transform_file.h"
#include "cli/context.h"

namespace pxm::cli {

Command SetupReverse(CLI::App& parent, Context& ctx) {
  auto files = std::make_shared<std::vector<std::string>>();
  Command c;
  c.app = parent.add_subcommand(
      "reverse", "Write the negative of each file in the --to format (prints SOURCE -> OUTPUT)");
  c.app->add_option("files", *files, "Picture files")->required()->type_name("FILE");
  c.run = [&ctx, files]() {
    int destRow = DestinationRow(ctx);
    if (destRow < 0 || !ApplyOutputOption(ctx, files->size())) return kUsageError;
    return RunOverFiles(ctx, *files, [&](Host& host, const std::string& path) {
      return ReverseFile(host, path, destRow, ctx.options.destDir);
    });
  };
  return c;
}

}  // namespace pxm::cli
