#pragma once

#include <string>

namespace pxm::test {

// Runs a shell command; answers its exit status (-1 when it could not run).
int Run(const std::string& command);
// Runs a command and captures its standard output.
int RunCapture(const std::string& command, std::string& output);
// Whether a program is on the PATH.
bool HaveProgram(const std::string& name);
// `text` quoted for the shell.
std::string ShellQuote(const std::string& text);

// Where the public test suites are: $PXM_TESTDATA, the configured folder, or nothing.
std::string TestDataDir();
// The repository's own folder.
std::string SourceDir();

}  // namespace pxm::test
