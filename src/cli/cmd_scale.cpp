#include <iostream>

#include "batch/scale_file.h"
#include "cli/context.h"

namespace pxm::cli {
namespace {

struct ScaleArgs {
  std::vector<std::string> files;
  std::string percent;  // "P" or "H,V"
  std::string size;     // "WxH"
};

// The dialog's choice from the options: by factor (constant or anamorphic) or by size, every
// value held to the dialog's range. False when the options do not say one of these.
bool Settle(const ScaleArgs& args, ScaleSettings& scale) {
  std::vector<uint32_t> n;
  if (!args.percent.empty() == !args.size.empty()) return false;
  if (!args.size.empty()) {
    if (!ParseNumbers(args.size, 'x', 2, n)) return false;
    scale.targetWidth = static_cast<uint32_t>(ClampScaleValue(n[0]));
    scale.targetDepth = static_cast<uint32_t>(ClampScaleValue(n[1]));
    return true;
  }
  if (ParseNumbers(args.percent, ',', 1, n)) n.push_back(n[0]);
  else if (!ParseNumbers(args.percent, ',', 2, n)) return false;
  scale.horizontalPercent = ClampScaleValue(n[0]);
  scale.verticalPercent = ClampScaleValue(n[1]);
  return true;
}

}  // namespace

Command SetupScale(CLI::App& parent, Context& ctx) {
  auto args = std::make_shared<ScaleArgs>();
  Command c;
  c.app = parent.add_subcommand(
      "scale", "Scale each file (nearest neighbour) into the --to format (prints SOURCE -> OUTPUT)");
  c.app->add_option("--percent", args->percent,
                    "Percent of the width and depth, or H,V for each on its own (16 to 32760)")
      ->type_name("P|H,V");
  c.app->add_option("--size", args->size, "Width and depth in pixels (16 to 32760)")
      ->type_name("WxH");
  c.app->add_option("files", args->files, "Picture files")->required()->type_name("FILE");
  c.run = [&ctx, args]() {
    ScaleSettings scale;
    if (!Settle(*args, scale)) {
      std::cerr << "pxm: scale needs one of --percent P, --percent H,V or --size WxH\n";
      return kUsageError;
    }
    int destRow = DestinationRow(ctx);
    if (destRow < 0 || !ApplyOutputOption(ctx, args->files.size())) return kUsageError;
    return RunOverFiles(ctx, args->files, [&](Host& host, const std::string& path) {
      return ScaleFile(host, path, destRow, scale, ctx.options.destDir);
    });
  };
  return c;
}

}  // namespace pxm::cli
