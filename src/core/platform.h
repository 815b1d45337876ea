#pragma once

#include <cstdint>
#include <optional>
#include <string>

// Everything that depends on the operating system lives behind these functions, so that a port
// to another system is a port of platform.cpp alone.
namespace pxm::platform {

// The directory that holds "PXM.INI": $XDG_CONFIG_HOME/pixmill, else ~/.config/pixmill; nothing
// when neither variable is set.
std::optional<std::string> ConfigDirectory();
// ConfigDirectory() + "/PXM.INI", or nothing.
std::optional<std::string> ConfigFilePath();
// Creates the directory and its parents (mode 0700 for new ones); true when it exists after.
bool MakeDirectories(const std::string& path);

// The program's private temporary directory, made with mkdtemp under $TMPDIR on first use and
// removed with its contents when the process ends normally. Empty when it cannot be made.
const std::string& PrivateTempDirectory();

// $TMPDIR, or /tmp.
std::string TempRoot();

// A new spill file: created exclusively in $TMPDIR with a unique name beginning "!TEMP~~~",
// mode 0600, and unlinked at once so that nothing is left behind even if the process dies.
// Answers the open descriptor, or -1.
int CreateSpillFile();

// Bytes the image store may take from memory: $PXM_MEMORY_LIMIT when set, else half of the
// physical memory available now.
uint64_t StoreMemoryLimit();
// Bytes free for an unprivileged user on the file system holding `directory`.
uint64_t FreeDiskSpace(const std::string& directory);

std::string CurrentDirectory();
// True when both paths name the same existing file (device and inode), however spelled.
bool SameFile(const std::string& a, const std::string& b);
bool FileExists(const std::string& path);
bool IsDirectory(const std::string& path);
// Length of the file, or -1.
int64_t FileSize(const std::string& path);
bool RemoveFile(const std::string& path);

// One version of a file: its length, its modification time to the nanosecond, and which file it
// is. A file replaced through a rename is another file even within one tick of the clock, which
// the time alone would not show.
struct FileStamp {
  int64_t size = 0;
  int64_t modifiedSeconds = 0;  // since 1970
  int64_t modifiedNanoseconds = 0;
  uint64_t device = 0;
  uint64_t inode = 0;
  friend bool operator==(const FileStamp&, const FileStamp&) = default;
};
// The stamp of a file, or nothing when it cannot be looked at.
std::optional<FileStamp> StampOf(const std::string& path);
// True when `path` lies on a file system mounted read-only, as discs are.
bool OnReadOnlyFileSystem(const std::string& path);

// A new empty file in `directory` whose name starts with a dot and `hint`, for a writer to fill
// before it is renamed over its final name. Nothing when it cannot be made. The file is pending
// until ReplaceFile renames it or RemoveFile removes it.
std::optional<std::string> CreateTemporaryFileIn(const std::string& directory,
                                                 const std::string& hint);
// Removes every pending temporary file. Safe inside a signal handler: a process ended by a
// signal leaves no half-written file behind.
void RemovePendingTemporaryFiles();
// Renames `from` over `to`; the finished file gets the mode a newly created file would have
// (or the replaced file's mode). True on success.
bool ReplaceFile(const std::string& from, const std::string& to);

// Renames `from` to `to` unless something named `to` exists already. True on success.
bool RenameNoReplace(const std::string& from, const std::string& to);
// Gives `target` the modification time of `source`. True on success.
bool CopyModificationTime(const std::string& source, const std::string& target);

// The current local time in the 24-character form of ctime ("Sat Nov 21 15:09:00 2026").
std::string CtimeNow();

bool IsTerminal(int fd);

}  // namespace pxm::platform
