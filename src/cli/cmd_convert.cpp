#include "batch/convert.h"
#include "cli/context.h"

namespace pxm::cli {

Command SetupConvert(CLI::App& parent, Context& ctx) {
  auto files = std::make_shared<std::vector<std::string>>();
  Command c;
  c.app = parent.add_subcommand(
      "convert",
      "Convert each file into the --to format (prints SOURCE -> OUTPUT). JPEG files are read as "
      "256 colours unless ReadJpegRgb is on: --set ReadJpegRgb=1 keeps every colour");
  c.app->add_option("files", *files, "Picture files")->required()->type_name("FILE");
  c.run = [&ctx, files]() {
    int destRow = DestinationRow(ctx);
    if (destRow < 0) return kUsageError;
    if (!ApplyOutputOption(ctx, files->size())) return kUsageError;
    ConvertOptions options;
    options.destinationDirectory = ctx.options.destDir;
    return RunOverFiles(ctx, *files, [&](Host& host, const std::string& path) {
      return Convert(host, path, destRow, options);
    });
  };
  return c;
}

}  // namespace pxm::cli
