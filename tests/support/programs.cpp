#include "support/programs.h"

#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>

#include "core/platform.h"

namespace pxm::test {

int Run(const std::string& command) {
  int status = std::system(command.c_str());
  if (status == -1 || !WIFEXITED(status)) return -1;
  return WEXITSTATUS(status);
}

int RunCapture(const std::string& command, std::string& output) {
  output.clear();
  FILE* pipe = popen(command.c_str(), "r");
  if (!pipe) return -1;
  char buf[65536];
  size_t n;
  while ((n = fread(buf, 1, sizeof buf, pipe)) > 0) output.append(buf, n);
  int status = pclose(pipe);
  if (status == -1 || !WIFEXITED(status)) return -1;
  return WEXITSTATUS(status);
}

bool HaveProgram(const std::string& name) {
  return Run("command -v " + ShellQuote(name) + " >/dev/null 2>&1") == 0;
}

std::string ShellQuote(const std::string& text) {
  std::string out = "'";
  for (char c : text) {
    if (c == '\'') out += "'\\''";
    else out += c;
  }
  return out + "'";
}

std::string TestDataDir() {
  if (const char* env = std::getenv("PXM_TESTDATA"); env && platform::IsDirectory(env)) return env;
  for (const char* candidate : {PXM_TESTDATA_DIR, "/work/shared/testdata"})
    if (platform::IsDirectory(candidate)) return candidate;
  return {};
}

std::string SourceDir() { return PXM_SOURCE_DIR; }

}  // namespace pxm::test
