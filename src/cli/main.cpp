// pxm: Pixmill's batch tool. Runs one command over the files named on the command line with the
// same engine, settings and rules as the desktop program.

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iostream>
#include <thread>

#include "cli/context.h"
#include "config/ini.h"
#include "config/settings.h"
#include "core/platform.h"

namespace pxm::cli {
namespace {

void AddGlobalOptions(CLI::App& app, GlobalOptions& o) {
  app.add_option("--ini", o.ini, "Read settings from PATH instead of the user's PXM.INI")
      ->type_name("PATH");
  app.add_option("--set", o.sets,
                 "One more PXM.INI line, applied after the file (repeatable), e.g. --set GIF=0")
      ->type_name("KEY=VALUE")
      ->allow_extra_args(false);
  app.add_option("--to", o.to, "Destination format by its three-letter extension")
      ->type_name("EXT");
  app.add_option("--dest-dir", o.destDir,
                 "Destination directory (with FilenameUnderbars on, names are cut to 6 "
                 "characters)")
      ->type_name("DIR");
  app.add_option("--output", o.output,
                 "With one input file: the output name, as chosen in the save dialog")
      ->type_name("PATH");
  app.add_option("--image", o.image, "Image to take from a multi-image file, counting from 0")
      ->type_name("N");
  app.add_option("--comment", o.comment, "Answer of the comment dialog wherever it is shown")
      ->type_name("TEXT");
  app.add_option("--uue-part", o.uueParts,
                 "Next part of a split UUE file, in order (repeatable); then Ok")
      ->type_name("PATH")
      ->allow_extra_args(false);
  auto* yes = app.add_flag("--yes", o.yes, "Answer Yes to every question (overwrite, Move)");
  app.add_flag("--no", o.no, "Answer No to every question")->excludes(yes);
  app.add_flag("--quiet", o.quiet, "No status or progress output");
  app.add_flag("--json", o.json, "Machine-readable output where a command prints results");
  o.jobs = std::max(1u, std::thread::hardware_concurrency());
  app.add_option("--jobs", o.jobs,
                 "Run the files of a command on N threads (default: the number of cores); the "
                 "output is the same as with one")
      ->type_name("N")
      ->check(CLI::PositiveNumber);
}

// Settings: defaults, then the file, then the --set lines by the same rules.
void LoadSettings(Context& ctx) {
  if (!ctx.options.ini.empty()) {
    ctx.iniPath = ctx.options.ini;
  } else if (auto path = platform::ConfigFilePath()) {
    ctx.iniPath = *path;
  }
  Settings& settings = CurrentSettings();
  if (!ctx.iniPath.empty()) {
    ReadConfiguration(ctx.iniPath, settings);
    ReadRecentDirectories(ctx.iniPath, ctx.recent);
  }
  for (const std::string& line : ctx.options.sets) ApplyConfigurationLine(line, settings);
}

int Main(int argc, char** argv) {
  CLI::App app{"Pixmill batch tool: runs one command over every picture file you name: info, convert, scale, crop, rotate and flip, negative, dither, effects, thumbnails, copy, move, rename, delete.", "pxm"};
  app.require_subcommand(1);
  app.footer(
      "Exit status: 0 when every file succeeded, else the error code (1-24) of the first file "
      "that failed, 64 for a usage error.\nSettings come from PXM.INI (see `pxm config path`); "
      "pxm writes it only through `pxm config write`.");
  Context ctx;
  AddGlobalOptions(app, ctx.options);

  // Every command of the tool, in the order --help lists them.
  static constexpr CommandSetup kCommands[] = {
      SetupFormats,
      SetupInfo,
      SetupConvert,
      SetupScale,
      SetupTransform,
      SetupReverse,
      SetupCrop,
      SetupCopy,
      SetupMove,
      SetupRename,
      SetupDelete,
      SetupDither,
      SetupEffect,
      SetupThumbnail,
      SetupConfig,
  };
  std::vector<Command> commands;
  for (CommandSetup setup : kCommands) {
    commands.push_back(setup(app, ctx));
    // Options of every command may also stand after the command's name.
    commands.back().app->fallthrough();
  }

  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp& e) {
    return app.exit(e);
  } catch (const CLI::CallForAllHelp& e) {
    return app.exit(e);
  } catch (const CLI::ParseError& e) {
    app.exit(e);
    return kUsageError;
  }

  LoadSettings(ctx);
  Answers answers;
  if (ctx.options.yes) answers.yes = true;
  if (ctx.options.no) answers.yes = false;
  answers.image = ctx.options.image;
  answers.comment = ctx.options.comment;
  answers.nextFiles = ctx.options.uueParts;
  answers.quiet = ctx.options.quiet;
  if (!ctx.options.output.empty()) answers.output = ctx.options.output;
  TerminalHost host(answers);
  ctx.host = &host;

  for (const Command& command : commands)
    if (command.app->parsed()) return command.run();
  return kUsageError;
}

}  // namespace
}  // namespace pxm::cli

int main(int argc, char** argv) { return pxm::cli::Main(argc, argv); }
