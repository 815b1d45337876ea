#include "core/platform.h"

#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <mutex>
#include <vector>

namespace pxm::platform {
namespace {

std::string Env(const char* name) {
  const char* v = std::getenv(name);
  return v ? std::string(v) : std::string();
}

mode_t CurrentUmask() {
  mode_t mask = umask(0);
  umask(mask);
  return mask;
}

// The temporary files being written, kept where a signal handler can reach them without
// allocating or locking: a fixed table of paths, each published by its state once complete.
// Threads claim and release slots under a lock; the handler only reads published slots. Files
// run side by side on as many threads as there are cores, each with one or two files pending.
struct PendingSlot {
  enum : int { kFree, kPublished };
  std::atomic<int> state{kFree};
  char path[PATH_MAX];
};
PendingSlot gPending[64];
std::mutex gPendingLock;

void AddPending(const std::string& path) {
  if (path.size() >= PATH_MAX) return;
  std::lock_guard lock(gPendingLock);
  for (PendingSlot& slot : gPending) {
    if (slot.state.load() != PendingSlot::kFree) continue;
    std::memcpy(slot.path, path.c_str(), path.size() + 1);
    slot.state.store(PendingSlot::kPublished);
    return;
  }
}

void DropPending(const std::string& path) {
  std::lock_guard lock(gPendingLock);
  for (PendingSlot& slot : gPending)
    if (slot.state.load() == PendingSlot::kPublished && path == slot.path)
      slot.state.store(PendingSlot::kFree);
}

struct TempDirectory {
  std::string path;
  TempDirectory() {
    std::string templ = TempRoot() + "/pixmill-XXXXXX";
    std::vector<char> buf(templ.begin(), templ.end());
    buf.push_back('\0');
    if (mkdtemp(buf.data())) path = buf.data();
  }
  ~TempDirectory() {
    if (path.empty()) return;
    std::error_code ec;
    std::filesystem::remove_all(path, ec);
  }
};

}  // namespace

std::optional<std::string> ConfigDirectory() {
  std::string xdg = Env("XDG_CONFIG_HOME");
  if (!xdg.empty()) return xdg + "/pixmill";
  std::string home = Env("HOME");
  if (!home.empty()) return home + "/.config/pixmill";
  return std::nullopt;
}

std::optional<std::string> ConfigFilePath() {
  auto dir = ConfigDirectory();
  if (!dir) return std::nullopt;
  return *dir + "/PXM.INI";
}

bool MakeDirectories(const std::string& path) {
  std::error_code ec;
  std::filesystem::create_directories(path, ec);
  return IsDirectory(path);
}

std::string TempRoot() {
  std::string root = Env("TMPDIR");
  if (root.empty()) root = "/tmp";
  while (root.size() > 1 && root.back() == '/') root.pop_back();
  return root;
}

const std::string& PrivateTempDirectory() {
  static TempDirectory dir;
  return dir.path;
}

int CreateSpillFile() {
  std::string templ = TempRoot() + "/!TEMP~~~XXXXXX";
  std::vector<char> buf(templ.begin(), templ.end());
  buf.push_back('\0');
  int fd = mkostemp(buf.data(), O_CLOEXEC);  // exclusive create, mode 0600
  if (fd < 0) return -1;
  unlink(buf.data());
  return fd;
}

uint64_t StoreMemoryLimit() {
  std::string limit = Env("PXM_MEMORY_LIMIT");
  if (!limit.empty()) {
    char* end = nullptr;
    errno = 0;
    unsigned long long v = std::strtoull(limit.c_str(), &end, 10);
    if (errno == 0 && end != limit.c_str()) return v;
  }
  // Memory the kernel could hand out without swapping counts the file cache it would drop; free
  // pages alone are a small part of a machine that has been reading files.
  if (std::FILE* meminfo = std::fopen("/proc/meminfo", "r")) {
    char line[128];
    unsigned long long kib = 0;
    while (std::fgets(line, sizeof line, meminfo))
      if (std::sscanf(line, "MemAvailable: %llu kB", &kib) == 1) break;
    std::fclose(meminfo);
    if (kib > 0) return kib * 1024 / 2;
  }
  long pages = sysconf(_SC_AVPHYS_PAGES);
  long pageSize = sysconf(_SC_PAGESIZE);
  if (pages <= 0 || pageSize <= 0) return 256ull << 20;
  return static_cast<uint64_t>(pages) * static_cast<uint64_t>(pageSize) / 2;
}

uint64_t FreeDiskSpace(const std::string& directory) {
  struct statvfs st;
  if (statvfs(directory.c_str(), &st) != 0) return 0;
  return static_cast<uint64_t>(st.f_bavail) * st.f_frsize;
}

std::string CurrentDirectory() {
  std::error_code ec;
  auto p = std::filesystem::current_path(ec);
  return ec ? std::string() : p.string();
}

bool SameFile(const std::string& a, const std::string& b) {
  struct stat sa, sb;
  if (stat(a.c_str(), &sa) != 0 || stat(b.c_str(), &sb) != 0) return false;
  return sa.st_dev == sb.st_dev && sa.st_ino == sb.st_ino;
}

bool FileExists(const std::string& path) {
  struct stat st;
  return stat(path.c_str(), &st) == 0;
}

bool IsDirectory(const std::string& path) {
  struct stat st;
  return stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

int64_t FileSize(const std::string& path) {
  struct stat st;
  if (stat(path.c_str(), &st) != 0) return -1;
  return static_cast<int64_t>(st.st_size);
}

bool RemoveFile(const std::string& path) {
  DropPending(path);
  return unlink(path.c_str()) == 0;
}

std::optional<FileStamp> StampOf(const std::string& path) {
  struct stat st;
  if (stat(path.c_str(), &st) != 0) return std::nullopt;
  FileStamp stamp;
  stamp.size = static_cast<int64_t>(st.st_size);
  stamp.modifiedSeconds = static_cast<int64_t>(st.st_mtim.tv_sec);
  stamp.modifiedNanoseconds = static_cast<int64_t>(st.st_mtim.tv_nsec);
  stamp.device = static_cast<uint64_t>(st.st_dev);
  stamp.inode = static_cast<uint64_t>(st.st_ino);
  return stamp;
}

bool OnReadOnlyFileSystem(const std::string& path) {
  struct statvfs st;
  return statvfs(path.c_str(), &st) == 0 && (st.f_flag & ST_RDONLY) != 0;
}

std::optional<std::string> CreateTemporaryFileIn(const std::string& directory,
                                                 const std::string& hint) {
  std::string dir = directory.empty() ? std::string(".") : directory;
  if (dir.back() != '/') dir += '/';
  std::string templ = dir + "." + hint.substr(0, 64) + ".pxm-XXXXXX";
  std::vector<char> buf(templ.begin(), templ.end());
  buf.push_back('\0');
  // Signals wait while the file is made and recorded: one arriving between the two would end
  // the process with the file on disk but not yet in the table.
  sigset_t all, previous;
  sigfillset(&all);
  pthread_sigmask(SIG_BLOCK, &all, &previous);
  int fd = mkostemp(buf.data(), O_CLOEXEC);
  std::string path = fd < 0 ? std::string() : std::string(buf.data());
  if (fd >= 0) AddPending(path);
  pthread_sigmask(SIG_SETMASK, &previous, nullptr);
  if (fd < 0) return std::nullopt;
  close(fd);
  return path;
}

void RemovePendingTemporaryFiles() {
  for (PendingSlot& slot : gPending)
    if (slot.state.exchange(PendingSlot::kFree) == PendingSlot::kPublished) unlink(slot.path);
}

bool ReplaceFile(const std::string& from, const std::string& to) {
  struct stat st;
  mode_t mode = (0666 & ~CurrentUmask());
  if (stat(to.c_str(), &st) == 0 && S_ISREG(st.st_mode)) mode = st.st_mode & 07777;
  chmod(from.c_str(), mode);
  if (rename(from.c_str(), to.c_str()) != 0) return false;
  DropPending(from);
  return true;
}

bool RenameNoReplace(const std::string& from, const std::string& to) {
  // The exchange-free rename refuses atomically; file systems without it get the plain check.
  if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return true;
  if (errno != EINVAL && errno != ENOSYS) return false;
  struct stat st;
  if (lstat(to.c_str(), &st) == 0) return false;
  return rename(from.c_str(), to.c_str()) == 0;
}

bool CopyModificationTime(const std::string& source, const std::string& target) {
  struct stat st;
  if (stat(source.c_str(), &st) != 0) return false;
  struct timespec times[2];
  times[0].tv_sec = 0;
  times[0].tv_nsec = UTIME_OMIT;  // the access time is the copy's own
  times[1] = st.st_mtim;
  return utimensat(AT_FDCWD, target.c_str(), times, 0) == 0;
}

std::string CtimeNow() {
  time_t now = time(nullptr);
  struct tm local;
  localtime_r(&now, &local);
  char buf[64];
  if (!asctime_r(&local, buf)) return std::string(24, ' ');
  return std::string(buf, strnlen(buf, 24));
}

bool IsTerminal(int fd) { return isatty(fd) == 1; }

}  // namespace pxm::platform
