#include "batch/copy_file.h"
#include "cli/context.h"
#include "config/settings.h"

namespace pxm::cli {
namespace {

struct CopyArgs {
  std::vector<std::string> files;
  std::string toDir;
  bool verify = false;
  bool noVerify = false;
};

// Copy and Move differ only in their option bits; the verify bit defaults to CopyOptions'.
Command SetupFileCopy(CLI::App& parent, Context& ctx, const char* name, const char* help,
                      int kindBits) {
  auto args = std::make_shared<CopyArgs>();
  Command c;
  c.app = parent.add_subcommand(name, help);
  c.app->add_option("--to-dir", args->toDir, "Destination directory")
      ->required()
      ->type_name("DIR");
  auto* verify = c.app->add_flag("--verify", args->verify,
                                 "Read each copy back and compare its CRC with the source's");
  c.app->add_flag("--no-verify", args->noVerify, "Do not read the copies back")
      ->excludes(verify);
  c.app->add_option("files", args->files, "Files")->required()->type_name("FILE");
  c.run = [&ctx, args, kindBits]() {
    int options = (CurrentSettings().CopyOptions & kCopyVerifies) | kindBits;
    if (args->verify) options |= kCopyVerifies;
    if (args->noVerify) options &= ~kCopyVerifies;
    if (int code = ConfirmCopy(*ctx.host, args->files, args->toDir, options)) return code;
    return RunOverFiles(ctx, args->files, [&](Host& host, const std::string& path) {
      return CopyTaggedFile(host, path, args->toDir, options);
    });
  };
  return c;
}

}  // namespace

Command SetupCopy(CLI::App& parent, Context& ctx) {
  return SetupFileCopy(parent, ctx, "copy",
                       "Copy each file byte for byte into --to-dir (prints SOURCE -> COPY)",
                       kCopyShowsCopying);
}

Command SetupMove(CLI::App& parent, Context& ctx) {
  return SetupFileCopy(parent, ctx, "move",
                       "Move each file into --to-dir: copied, then deleted (asks first; --yes)",
                       kCopyDeletesSource);
}

}  // namespace pxm::cli
