#pragma once

#include <CLI/CLI.hpp>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "batch/file_walk.h"
#include "cli/terminal_host.h"
#include "config/recent_dirs.h"

namespace pxm::cli {

// Exit status of a command line that could not be understood.
constexpr int kUsageError = 64;

// Options every command takes, before or after the command's name.
struct GlobalOptions {
  std::string ini;                  // --ini PATH
  std::vector<std::string> sets;    // --set KEY=VALUE
  std::string to;                   // --to EXT
  std::string destDir;              // --dest-dir DIR
  std::string output;               // --output PATH
  std::optional<uint32_t> image;    // --image N
  std::optional<std::string> comment;
  std::vector<std::string> uueParts;
  bool yes = false;
  bool no = false;
  bool quiet = false;
  bool json = false;
  unsigned jobs = 1;                // --jobs N: files of one command run on N threads
};

// What a command runs with: the parsed options, the settings file in force, and the host.
struct Context {
  GlobalOptions options;
  std::string iniPath;              // empty when there is no place for PXM.INI
  RecentDirectories recent;
  TerminalHost* host = nullptr;
};

// A command: its CLI11 subcommand and what runs when it is chosen. Each command's file makes
// its own with a setup function listed in main.cpp.
struct Command {
  CLI::App* app = nullptr;
  std::function<int()> run;
};
using CommandSetup = Command (*)(CLI::App& parent, Context& ctx);

Command SetupFormats(CLI::App& parent, Context& ctx);
Command SetupInfo(CLI::App& parent, Context& ctx);
Command SetupConvert(CLI::App& parent, Context& ctx);
Command SetupConfig(CLI::App& parent, Context& ctx);
Command SetupScale(CLI::App& parent, Context& ctx);
Command SetupTransform(CLI::App& parent, Context& ctx);
Command SetupReverse(CLI::App& parent, Context& ctx);
Command SetupCrop(CLI::App& parent, Context& ctx);
Command SetupCopy(CLI::App& parent, Context& ctx);
Command SetupMove(CLI::App& parent, Context& ctx);
Command SetupRename(CLI::App& parent, Context& ctx);
Command SetupDelete(CLI::App& parent, Context& ctx);
Command SetupDither(CLI::App& parent, Context& ctx);
Command SetupEffect(CLI::App& parent, Context& ctx);
Command SetupThumbnail(CLI::App& parent, Context& ctx);

// Runs `driver` over the files the way every batch command does, on --jobs threads: prints
// "SOURCE -> OUTPUT" for each success (unless --quiet) or, with --json, one object per file,
// and "NAME - TEXT" for each failure, all in the order the files were named; starts no file
// after Ctrl-C; answers the exit status (the code of the first file that failed, or 0). The
// driver runs on the host it is given, which belongs to its file.
int RunOverFiles(Context& ctx, const std::vector<std::string>& files,
                 const std::function<int(Host& host, const std::string& path)>& driver);
// The walk options of --jobs, with files that write the same name kept in order.
WalkOptions WalkOptionsOf(const Context& ctx);

// Prints "NAME - TEXT" for a failed file on stderr.
void ReportFailure(Context& ctx, const std::string& name, int code);
// --output is the save dialog's answer for one input file: it puts the dialog in the way of the
// name. False (with a message) when more than one file was given.
bool ApplyOutputOption(const Context& ctx, size_t fileCount);
// Splits "12,34" (or "640x480" with separator 'x') into exactly `count` unsigned numbers.
bool ParseNumbers(const std::string& text, char separator, size_t count,
                  std::vector<uint32_t>& numbers);

// The destination row named by --to; prints a usage message and answers -1 when it names none.
int DestinationRow(const Context& ctx);

}  // namespace pxm::cli
