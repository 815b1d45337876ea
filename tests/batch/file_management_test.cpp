#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "batch/copy_file.h"
#include "batch/rename_delete.h"
#include "config/settings.h"
#include "core/error_codes.h"
#include "core/scripted_host.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

namespace fs = std::filesystem;
using test::ListDirectory;
using test::ReadFileBytes;
using test::WriteFileBytes;

std::string Bytes(size_t n) {
  std::string s(n, '\0');
  for (size_t i = 0; i < n; ++i) s[i] = static_cast<char>((i * 7 + i / 251) & 0xFF);
  return s;
}

// Plays the user and, when the copy is read back, spoils it on disc first.
class SpoilingHost : public ScriptedHost {
 public:
  std::string directory;
  void SetStatus(std::string_view text) override {
    ScriptedHost::SetStatus(text);
    if (text.rfind("Verifying", 0) != 0) return;
    for (const std::string& name : ListDirectory(directory)) {
      if (name[0] != '.') continue;  // only the copy in the making
      std::fstream f(directory + "/" + name, std::ios::in | std::ios::out | std::ios::binary);
      f.seekp(65531);
      f.put('!');
    }
  }
};

class FileManagement : public ::testing::Test {
 protected:
  ScopedSettings settings;
  test::TempDir dir;
  ScriptedHost host;
  void SetUp() override { fs::create_directory(dir / "to"); }
};

TEST_F(FileManagement, CopiesInChunksWithTheirStepCount) {
  struct Case {
    size_t size;
    uint64_t chunks, steps;
  } cases[] = {{0, 0, 1}, {65530, 1, 1}, {65531, 2, 1}, {3 * 65530, 3, 2}, {3 * 65530 + 1, 4, 3}};
  for (const Case& c : cases) {
    const std::string name = "f" + std::to_string(c.size);
    WriteFileBytes(dir / name, Bytes(c.size));
    ScriptedHost h;
    ASSERT_EQ(CopyTaggedFile(h, dir / name, dir / "to", kCopyShowsCopying), 0) << c.size;
    EXPECT_EQ(ReadFileBytes(dir / ("to/" + name)), Bytes(c.size));
    EXPECT_EQ(h.polls, c.chunks) << c.size;              // one look for a click per chunk
    EXPECT_EQ(h.progressCalls, c.chunks + 1) << c.size;  // the reset, then one per chunk
    if (c.chunks) {
      EXPECT_EQ(h.lastTotal, c.steps) << c.size;
    }
    EXPECT_EQ(h.statuses, std::vector<std::string>{"Copying " + dir / name});
    EXPECT_EQ(h.writtenFiles, std::vector<std::string>{dir / ("to/" + name)});
    EXPECT_EQ(CopySteps(c.size), c.steps);
  }
  EXPECT_TRUE(fs::exists(dir / "f0"));  // a copy keeps its source
}

TEST_F(FileManagement, VerifyReadsTheCopyBackAndAMismatchLeavesNothing) {
  WriteFileBytes(dir / "big", Bytes(200000));
  ASSERT_EQ(CopyTaggedFile(host, dir / "big", dir / "to", kCopyShowsCopying | kCopyVerifies), 0);
  EXPECT_EQ(host.statuses,
            (std::vector<std::string>{"Copying " + dir / "big", "Verifying " + dir / "big"}));
  EXPECT_EQ(host.polls, 8u);  // four chunks each way
  WriteFileBytes(dir / "empty", "");
  EXPECT_EQ(CopyTaggedFile(host, dir / "empty", dir / "to", kCopyVerifies), 0);

  SpoilingHost spoiler;
  spoiler.directory = dir / "to";
  WriteFileBytes(dir / "to/big", "an older copy");
  EXPECT_EQ(CopyTaggedFile(spoiler, dir / "big", dir / "to", kCopyVerifies | kCopyDeletesSource),
            kVerifyError);
  EXPECT_EQ(spoiler.statuses.front(), "Moving " + dir / "big");
  EXPECT_TRUE(fs::exists(dir / "big"));  // a failed move keeps its source
  EXPECT_EQ(ReadFileBytes(dir / "to/big"), "an older copy");
  EXPECT_EQ(ListDirectory(dir / "to"), (std::vector<std::string>{"big", "empty"}));
}

TEST_F(FileManagement, AClickLeavesNoCopy) {
  WriteFileBytes(dir / "f", Bytes(5 * 65530));
  for (uint64_t poll : {1u, 3u, 7u}) {  // while copying, and (7) while verifying
    ScriptedHost h;
    h.abortOnPoll = poll;
    EXPECT_EQ(CopyTaggedFile(h, dir / "f", dir / "to", kCopyVerifies), kCancelled) << poll;
    EXPECT_EQ(h.beeps, 1u);
    EXPECT_TRUE(ListDirectory(dir / "to").empty()) << poll;
  }
  EXPECT_EQ(CopyTaggedFile(host, dir / "missing", dir / "to", 1), kOpenError);
  EXPECT_EQ(CopyTaggedFile(host, dir / "f", dir / "nowhere", 1), kOpenError);
}

TEST_F(FileManagement, DestinationPathsAndTheFileItself) {
  WriteFileBytes(dir / "a.bmp", "picture");
  EXPECT_EQ(CopyDestination(dir / "a.bmp", dir / "to"), dir / "to/a.bmp");
  EXPECT_EQ(CopyDestination(dir / "a.bmp", dir / "to/"), dir / "to/a.bmp");

  // The same directory spelled another way is still the same file.
  const std::vector<std::string> files{dir / "a.bmp"};
  for (std::string spelling : {dir.path(), dir.path() + "/", dir / "to/..", dir / "./"}) {
    EXPECT_EQ(ConfirmCopy(host, files, spelling, kCopyShowsCopying), kCancelled) << spelling;
    EXPECT_EQ(CopyTaggedFile(host, dir / "a.bmp", spelling, kCopyShowsCopying), kCancelled);
  }
  EXPECT_EQ(host.messages.back(), "Files cannot be moved or copied to themselves.");
  EXPECT_EQ(ReadFileBytes(dir / "a.bmp"), "picture");
  EXPECT_TRUE(host.questions.empty());

  // A move asks first; No stops the command, Yes lets it go on.
  EXPECT_EQ(ConfirmCopy(host, files, dir / "to", kCopyDeletesSource), kCancelled);
  EXPECT_EQ(host.questions.back(),
            "The Move option will delete your selected source files. Click on Yes to proceed or "
            "No to Cancel.");
  host.yesNoAnswer = kIdYes;
  EXPECT_EQ(ConfirmCopy(host, files, dir / "to", kCopyDeletesSource), kOk);
  EXPECT_EQ(ConfirmCopy(host, files, dir / "to", kCopyShowsCopying), kOk);
  EXPECT_EQ(host.questions.size(), 2u);
}

TEST_F(FileManagement, MoveDeletesTheSourceAndTheCopyKeepsItsDate) {
  WriteFileBytes(dir / "old.pcx", Bytes(1000));
  fs::last_write_time(dir / "old.pcx", fs::file_time_type(std::chrono::hours(24 * 365 * 30)));
  const auto stamp = fs::last_write_time(dir / "old.pcx");
  ASSERT_EQ(CopyTaggedFile(host, dir / "old.pcx", dir / "to", kCopyDeletesSource | kCopyVerifies),
            0);
  EXPECT_FALSE(fs::exists(dir / "old.pcx"));
  EXPECT_EQ(ReadFileBytes(dir / "to/old.pcx"), Bytes(1000));
  EXPECT_EQ(fs::last_write_time(dir / "to/old.pcx"), stamp);
}

TEST_F(FileManagement, RenameAndDelete) {
  WriteFileBytes(dir / "a.bmp", "a");
  WriteFileBytes(dir / "b.bmp", "b");
  EXPECT_EQ(RenameTaggedFile(host, dir / "a.bmp", "b.bmp"), kRenameError);  // never replaces
  EXPECT_EQ(RenameTaggedFile(host, dir / "gone.bmp", "c.bmp"), kRenameError);
  EXPECT_EQ(RenameTaggedFile(host, dir / "a.bmp", ""), kRenameError);
  ASSERT_EQ(RenameTaggedFile(host, dir / "a.bmp", "c.bmp"), 0);
  EXPECT_EQ(host.writtenFiles.back(), dir / "c.bmp");
  ASSERT_EQ(RenameTaggedFile(host, dir / "c.bmp", dir / "to/d.bmp"), 0);
  EXPECT_EQ(ReadFileBytes(dir / "to/d.bmp"), "a");

  EXPECT_FALSE(ConfirmDelete(host, 1));
  EXPECT_EQ(host.questions.back(), "Delete the selected file?");
  host.yesNoAnswer = kIdYes;
  EXPECT_TRUE(ConfirmDelete(host, 12));
  EXPECT_EQ(host.questions.back(), "Delete all 12 selected files?");
  EXPECT_EQ(DeleteTaggedFile(dir / "b.bmp"), 0);
  EXPECT_EQ(DeleteTaggedFile(dir / "b.bmp"), kOpenError);
  EXPECT_EQ(DeleteTaggedFile(dir / "to"), kOpenError);
  EXPECT_EQ(ListDirectory(dir.path()), std::vector<std::string>{"to"});
}

}  // namespace
}  // namespace pxm
