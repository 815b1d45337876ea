// `pxm` ended by a signal while it writes leaves neither the output nor its temporary file.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "core/names.h"
#include "core/platform.h"
#include "support/picture_files.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

using test::TempDir;

bool HasTemporary(const TempDir& dir) {
  for (const std::string& name : test::ListDirectory(dir.path()))
    if (name.find(".pxm-") != std::string::npos) return true;
  return false;
}

TEST(PendingTemporaryFiles, OnlyThoseNotYetRenamedOrRemovedAreRemoved) {
  TempDir dir;
  auto renamed = platform::CreateTemporaryFileIn(dir.path(), "a");
  auto removed = platform::CreateTemporaryFileIn(dir.path(), "b");
  auto pending = platform::CreateTemporaryFileIn(dir.path(), "c");
  ASSERT_TRUE(renamed && removed && pending);
  ASSERT_TRUE(platform::ReplaceFile(*renamed, dir / "a.bmp"));
  ASSERT_TRUE(platform::RemoveFile(*removed));
  test::WriteFileBytes(*removed, "someone else's file of that name");
  platform::RemovePendingTemporaryFiles();
  EXPECT_EQ(test::ListDirectory(dir.path()), (std::vector<std::string>{NamePart(*removed), "a.bmp"}));
}

TEST(PendingTemporaryFiles, AConversionEndedBySignalsLeavesNothing) {
  TempDir dir;
  // Big enough that the sanitized build is still writing when the signal comes.
  ASSERT_EQ(test::WritePicture(test::Pattern(3000, 2000, 24), dir / "big.bmp"), 0);
  for (int signal : {SIGTERM, SIGHUP, SIGINT}) {
    SCOPED_TRACE(signal);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      setenv("XDG_CONFIG_HOME", (dir / "config").c_str(), 1);
      execl(PXM_EXE, PXM_EXE, "--quiet", "--set", "PngCompression=9", "convert", "--to", "png",
            "--output", (dir / "big.png").c_str(), (dir / "big.bmp").c_str(), nullptr);
      _exit(127);
    }
    // Once the temporary file exists the picture has been read and is being written.
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!HasTemporary(dir) && std::chrono::steady_clock::now() < deadline)
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    ASSERT_TRUE(HasTemporary(dir));
    kill(child, signal);
    if (signal == SIGINT) {  // the first Ctrl-C is a click; the second ends the process
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
      kill(child, signal);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    if (WIFEXITED(status)) {
      // The click alone was enough to stop the conversion: it answers "cancelled".
      EXPECT_EQ(signal, SIGINT);
      EXPECT_EQ(WEXITSTATUS(status), 4);
    } else {
      EXPECT_EQ(WTERMSIG(status), signal);
    }
    EXPECT_FALSE(HasTemporary(dir));
    EXPECT_FALSE(std::filesystem::exists(dir / "big.png"));
  }
}

}  // namespace
}  // namespace pxm
