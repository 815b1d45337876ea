#include <iostream>
#include <map>
#include <optional>

#include "batch/dither.h"
#include "cli/context.h"
#include "config/settings.h"
#include "formats/format_table.h"
#include "process/dither.h"

namespace pxm::cli {
namespace {

struct DitherArgs {
  std::vector<std::string> files;
  std::string method;
  std::optional<int> level;
  bool bidirectional = false;
  bool unidirectional = false;
  std::optional<int> size;
  std::optional<int> contrast;
  std::optional<int> brightness;
};

const std::map<std::string, uint32_t> kMethods = {{"bayer", kDitherBayer},
                                                  {"floyd", kDitherFloyd},
                                                  {"burkes", kDitherBurkes},
                                                  {"stucki", kDitherStucki},
                                                  {"threshold", kDitherThreshold}};
constexpr uint32_t kDirections = kDitherUnidirectional | kDitherBidirectional;
constexpr uint32_t kSizes = kDitherSize1 | kDitherSize2 | kDitherSize3 | kDitherSize4 | kDitherSize5;

uint32_t MethodBitOf(uint32_t mode) {
  for (uint32_t bit : {kDitherThreshold, kDitherBayer, kDitherFloyd, kDitherBurkes, kDitherStucki})
    if (mode & bit) return bit;
  return 0;
}

// The DitherMode word the dialog would store for these options, starting from the word in the
// settings: what is not given on the command line stays as it was. Answers nothing (after a
// message) when the options do not fit the method.
std::optional<uint32_t> ModeWord(const DitherArgs& a, uint32_t current) {
  const uint32_t was = MethodBitOf(current);
  const uint32_t method = a.method.empty() ? was : kMethods.at(a.method);
  const bool diffusion = method == kDitherFloyd || method == kDitherBurkes || method == kDitherStucki;
  if (a.level && method != kDitherThreshold) {
    std::cerr << "pxm: --level applies to --method threshold only\n";
    return std::nullopt;
  }
  if ((a.size || a.bidirectional || a.unidirectional) && !diffusion) {
    std::cerr << "pxm: --size, --bidirectional and --unidirectional apply to floyd, burkes and "
                 "stucki only\n";
    return std::nullopt;
  }
  if (a.method.empty() && !a.level && !a.size && !a.bidirectional && !a.unidirectional)
    return current;
  if (method == kDitherThreshold) {
    // The dialog offers 128 when it opens on another method.
    uint32_t level = a.level ? static_cast<uint32_t>(*a.level)
                     : was == kDitherThreshold ? (current & kDitherLevelMask)
                                               : 128;
    return level | kDitherThreshold;
  }
  if (method == kDitherBayer) return kDitherBayer | kDitherSize1;
  const bool keep = was == kDitherFloyd || was == kDitherBurkes || was == kDitherStucki;
  uint32_t direction = keep && (current & kDirections) ? current & kDirections : kDitherUnidirectional;
  if (a.bidirectional) direction = kDitherBidirectional;
  if (a.unidirectional) direction = kDitherUnidirectional;
  uint32_t size = keep && (current & kSizes) ? current & kSizes : kDitherSize1;
  if (a.size) size = kDitherSize1 << (*a.size - 1);
  return method | direction | size;
}

}  // namespace

Command SetupDither(CLI::App& parent, Context& ctx) {
  auto a = std::make_shared<DitherArgs>();
  Command c;
  c.app = parent.add_subcommand(
      "dither",
      "Reduce each file to black and white; written in its own format unless --to is given");
  c.app->add_option("files", a->files, "Picture files")->required()->type_name("FILE");
  c.app->add_option("--method", a->method, "bayer, floyd, burkes, stucki or threshold")
      ->check(CLI::IsMember({"bayer", "floyd", "burkes", "stucki", "threshold"}));
  c.app->add_option("--level", a->level, "Threshold level (threshold only)")
      ->check(CLI::Range(0, 255));
  auto* bi = c.app->add_flag("--bidirectional", a->bidirectional,
                             "Scan rows alternately right to left and left to right");
  c.app->add_flag("--unidirectional", a->unidirectional, "Scan every row left to right")
      ->excludes(bi);
  c.app->add_option("--size", a->size, "Halftone size factor (error diffusion only)")
      ->check(CLI::Range(1, 5));
  c.app->add_option("--contrast", a->contrast, "Contrast before dithering")
      ->check(CLI::Range(0, 254));
  c.app->add_option("--brightness", a->brightness, "Brightness before dithering")
      ->check(CLI::Range(0, 254));
  c.run = [&ctx, a]() {
    DitherOptions options;
    if (!ctx.options.to.empty() && (options.destRow = DestinationRow(ctx)) < 0) return kUsageError;
    Settings& settings = CurrentSettings();
    auto mode = ModeWord(*a, static_cast<uint32_t>(settings.DitherMode));
    if (!mode) return kUsageError;
    if (!ctx.options.output.empty()) {
      if (a->files.size() != 1) {
        std::cerr << "pxm: --output needs exactly one input file\n";
        return kUsageError;
      }
      settings.PromptforDestName = 1;  // --output is the save dialog's answer
    }
    settings.DitherMode = static_cast<int32_t>(*mode);
    if (a->contrast) settings.DitherContrast = *a->contrast;
    if (a->brightness) settings.DitherBrightness = *a->brightness;
    options.destinationDirectory = ctx.options.destDir;
    return RunOverFiles(ctx, a->files, [&](Host& host, const std::string& path) {
      return Dither(host, path, options);
    });
  };
  return c;
}

}  // namespace pxm::cli
