#include "core/file_io.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>

namespace pxm {
namespace {

constexpr size_t kBufferSize = 1 << 16;
// Requests this large skip the buffer: a picture row read straight into place costs one copy
// fewer, and the system call is cheap beside the copy.
constexpr size_t kDirectBytes = kBufferSize / 4;

// Reads at a file offset, so that a window's base costs nothing and no seek is ever needed.
ssize_t ReadFullyAt(int fd, uint8_t* out, size_t n, uint64_t offset) {
  size_t done = 0;
  while (done < n) {
    ssize_t r = pread(fd, out + done, n - done, static_cast<off_t>(offset + done));
    if (r < 0) {
      if (errno == EINTR) continue;
      return done ? static_cast<ssize_t>(done) : -1;
    }
    if (r == 0) break;
    done += static_cast<size_t>(r);
  }
  return static_cast<ssize_t>(done);
}

bool WriteFully(int fd, const uint8_t* data, size_t n) {
  while (n > 0) {
    ssize_t w = write(fd, data, n);
    if (w < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    data += w;
    n -= static_cast<size_t>(w);
  }
  return true;
}

}  // namespace

InputFile::~InputFile() { Close(); }

bool InputFile::Open(const std::string& path, FileWindow window) {
  Close();
  fd_ = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd_ < 0) return false;
  struct stat st;
  if (fstat(fd_, &st) != 0 || S_ISDIR(st.st_mode) ||
      window.offset > static_cast<uint64_t>(st.st_size)) {
    Close();
    return false;
  }
  base_ = window.offset;
  size_ = static_cast<uint64_t>(st.st_size) - base_;
  if (window.length != 0 && window.length < size_) size_ = window.length;
  buffer_.resize(kBufferSize);
  pos_ = end_ = 0;
  filePos_ = 0;
  return true;
}

void InputFile::Close() {
  if (fd_ >= 0) close(fd_);
  fd_ = -1;
  pos_ = end_ = 0;
}

bool InputFile::Refill() {
  if (fd_ < 0) return false;
  ssize_t r = ReadFullyAt(fd_, buffer_.data(), Within(buffer_.size()), base_ + filePos_);
  pos_ = 0;
  end_ = r > 0 ? static_cast<size_t>(r) : 0;
  filePos_ += end_;
  return end_ > 0;
}

size_t InputFile::Read(void* out, size_t n) {
  // An empty read may come with no buffer at all (the data of an empty vector).
  if (fd_ < 0 || n == 0) return 0;
  auto* dst = static_cast<uint8_t*>(out);
  size_t done = 0;
  size_t buffered = std::min(n, end_ - pos_);
  if (buffered) std::memcpy(dst, buffer_.data() + pos_, buffered);
  pos_ += buffered;
  done += buffered;
  if (done == n) return done;
  if (n - done >= kDirectBytes) {
    // Large reads go straight into the caller's memory; the buffer is empty by now.
    pos_ = end_ = 0;
    ssize_t r = ReadFullyAt(fd_, dst + done, Within(n - done), base_ + filePos_);
    if (r > 0) {
      filePos_ += static_cast<uint64_t>(r);
      done += static_cast<size_t>(r);
    }
    return done;
  }
  while (done < n && Refill()) {
    size_t take = std::min(n - done, end_ - pos_);
    std::memcpy(dst + done, buffer_.data() + pos_, take);
    pos_ += take;
    done += take;
  }
  return done;
}

bool InputFile::ReadLine(std::string& line, size_t limit) {
  line.clear();
  bool any = false;
  // Whole stretches of the buffer at a time: text files of megabytes (uuencoded pictures) are
  // read line by line.
  while (line.size() < limit) {
    if (pos_ >= end_ && !Refill()) return any;
    any = true;
    const char* start = reinterpret_cast<const char*>(buffer_.data() + pos_);
    const size_t avail = std::min(end_ - pos_, limit - line.size());
    if (const void* feed = std::memchr(start, '\n', avail)) {
      const auto n = static_cast<size_t>(static_cast<const char*>(feed) - start);
      line.append(start, n);
      pos_ += n + 1;
      return true;
    }
    line.append(start, avail);
    pos_ += avail;
  }
  // A line of exactly `limit` characters is whole: its line feed must not come back as an empty
  // piece, which the configuration reader would take for a blank line.
  if ((pos_ < end_ || Refill()) && buffer_[pos_] == '\n') ++pos_;
  return true;
}

bool InputFile::Seek(uint64_t offset) {
  if (fd_ < 0) return false;
  uint64_t bufferStart = filePos_ - end_;
  if (offset >= bufferStart && offset <= filePos_) {
    pos_ = static_cast<size_t>(offset - bufferStart);
    return true;
  }
  // Offsets past what the system's file offsets can hold fail, as seeking there always did.
  if (offset > static_cast<uint64_t>(INT64_MAX) - base_) return false;
  filePos_ = offset;
  pos_ = end_ = 0;
  return true;
}

size_t InputFile::Within(size_t n) const {
  const uint64_t left = filePos_ < size_ ? size_ - filePos_ : 0;
  return static_cast<size_t>(std::min<uint64_t>(n, left));
}

OutputFile::~OutputFile() { Discard(); }

bool OutputFile::Create(const std::string& path) {
  Discard();
  // Truncating marks a file on ext4 to be flushed at close, which costs a conversion tens of
  // milliseconds of waiting; the temporary files writers fill are empty already, so only a file
  // with something in it is cut.
  fd_ = open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
  if (fd_ < 0) return false;
  struct stat st;
  if (fstat(fd_, &st) != 0 || (st.st_size != 0 && ftruncate(fd_, 0) != 0)) {
    close(fd_);
    fd_ = -1;
    return false;
  }
  path_ = path;
  buffer_.resize(kBufferSize);
  used_ = 0;
  pos_ = 0;
  writebackFrom_ = 0;
  failed_ = false;
  return true;
}

bool OutputFile::Flush() {
  if (used_ == 0) return !failed_;
  if (!failed_ && !WriteFully(fd_, buffer_.data(), used_)) failed_ = true;
  pos_ += used_;
  used_ = 0;
  StartWriteback();
  return !failed_;
}

void OutputFile::StartWriteback() {
  // A large file handed to the disk as it grows is not flushed all at once when it replaces
  // another (ext4 does that on rename), and leaves less dirty memory behind; the call only
  // starts the writing and does not wait for it.
  constexpr uint64_t kWritebackBytes = 8u << 20;
  if (pos_ < writebackFrom_ + kWritebackBytes) return;
  sync_file_range(fd_, static_cast<off_t>(writebackFrom_), static_cast<off_t>(pos_ - writebackFrom_),
                  SYNC_FILE_RANGE_WRITE);
  writebackFrom_ = pos_;
}

bool OutputFile::Write(const void* data, size_t n) {
  if (fd_ < 0 || failed_) return false;
  const auto* src = static_cast<const uint8_t*>(data);
  if (n >= kDirectBytes) {
    if (!Flush()) return false;
    if (!WriteFully(fd_, src, n)) failed_ = true;
    pos_ += n;
    StartWriteback();
    return !failed_;
  }
  if (used_ + n > buffer_.size() && !Flush()) return false;
  std::memcpy(buffer_.data() + used_, src, n);
  used_ += n;
  return true;
}

bool OutputFile::Seek(uint64_t offset) {
  if (fd_ < 0 || !Flush()) return false;
  if (lseek(fd_, static_cast<off_t>(offset), SEEK_SET) < 0) {
    failed_ = true;
    return false;
  }
  pos_ = offset;
  return true;
}

bool OutputFile::Commit() {
  if (fd_ < 0) return false;
  bool ok = Flush();
  if (close(fd_) != 0) ok = false;
  fd_ = -1;
  if (!ok) {
    unlink(path_.c_str());
    return false;
  }
  path_.clear();
  return true;
}

void OutputFile::Discard() {
  if (fd_ < 0) return;
  close(fd_);
  fd_ = -1;
  unlink(path_.c_str());
  path_.clear();
}

bool ReadWholeFile(const std::string& path, std::vector<uint8_t>& out, uint64_t limit) {
  InputFile in;
  if (!in.Open(path) || in.Size() > limit) return false;
  out.resize(static_cast<size_t>(in.Size()));
  return in.ReadExact(out.data(), out.size());
}

}  // namespace pxm
