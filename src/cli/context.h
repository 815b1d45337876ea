#pragma once

#include <optional>
#include <string>
#include <vector>

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
};

// What a command runs with: the parsed options, the settings file in force, and the host.
struct Context {
  GlobalOptions options;
  std::string iniPath;              // empty when there is no place for PXM.INI
  RecentDirectories recent;
  TerminalHost* host = nullptr;
};

int RunFormats(Context& ctx);
int RunInfo(Context& ctx, const std::vector<std::string>& files, bool report);
int RunConvert(Context& ctx, const std::vector<std::string>& files);
int RunConfig(Context& ctx, const std::string& action);

// Prints "NAME - TEXT" for a failed file on stderr.
void ReportFailure(Context& ctx, const std::string& name, int code);
// The destination row named by --to; prints a usage message and answers -1 when it names none.
int DestinationRow(const Context& ctx);

}  // namespace pxm::cli
