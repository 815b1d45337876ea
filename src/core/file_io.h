#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// Buffered file access shared by every codec. Files are opened, used and closed within one
// handler call; both classes close their descriptor on every way out.
namespace pxm {

// A stretch of a file read as if it were the whole file: a picture kept inside another file
// (after a program's own image, say). Length 0 reaches to the end of the file.
struct FileWindow {
  uint64_t offset = 0;
  uint64_t length = 0;
};

class InputFile {
 public:
  InputFile() = default;
  ~InputFile();
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  // Opens the file, or the window of it that `window` names (offsets and the size then count
  // from its start). False when the file cannot be opened or is shorter than the window's offset.
  bool Open(const std::string& path, FileWindow window = {});
  bool IsOpen() const { return fd_ >= 0; }
  void Close();

  // Reads up to `n` bytes; answers how many arrived (fewer only at the end of the file or on an
  // error).
  size_t Read(void* out, size_t n);
  // True when exactly `n` bytes arrived.
  bool ReadExact(void* out, size_t n) { return Read(out, n) == n; }
  // The next byte, or -1 at the end.
  int ReadByte() {
    if (pos_ < end_) return buffer_[pos_++];
    return Refill() ? buffer_[pos_++] : -1;
  }
  // Reads one text line of at most `limit` characters into `line`, without its line feed (a
  // carriage return before it is kept). A longer line is continued by the next call. False at
  // the end of the file when nothing was read.
  bool ReadLine(std::string& line, size_t limit);

  bool Seek(uint64_t offset);
  bool Skip(uint64_t n) { return Seek(Tell() + n); }
  uint64_t Tell() const { return filePos_ - (end_ - pos_); }
  uint64_t Size() const { return size_; }

 private:
  bool Refill();
  // `n` cut to what is left before the end of the file or window.
  size_t Within(size_t n) const;
  int fd_ = -1;
  uint64_t base_ = 0;  // the window's offset in the file
  uint64_t size_ = 0;
  uint64_t filePos_ = 0;  // file offset just past the buffered bytes
  std::vector<uint8_t> buffer_;
  size_t pos_ = 0;
  size_t end_ = 0;
};

// A file being written. Until Commit() succeeds the file is provisional: destroying the object
// (an error, an abort, an exception) closes and deletes it, so no partial file is left behind.
class OutputFile {
 public:
  OutputFile() = default;
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  // Creates or truncates the file.
  bool Create(const std::string& path);
  bool IsOpen() const { return fd_ >= 0; }

  // False once any write has failed.
  bool Write(const void* data, size_t n);
  bool WriteByte(uint8_t b) { return Write(&b, 1); }
  // Moves the write position (for headers patched after the data).
  bool Seek(uint64_t offset);
  uint64_t Tell() const { return pos_ + used_; }

  // Flushes and closes; the file is kept only when every write succeeded.
  bool Commit();
  // Closes and deletes the file.
  void Discard();

 private:
  bool Flush();
  void StartWriteback();
  int fd_ = -1;
  std::string path_;
  std::vector<uint8_t> buffer_;
  size_t used_ = 0;
  uint64_t pos_ = 0;  // file offset of buffer_[0]
  uint64_t writebackFrom_ = 0;  // where the disk has not been asked to write yet
  bool failed_ = false;
};

// Reads a whole file, refusing files above `limit` bytes. False on any failure.
bool ReadWholeFile(const std::string& path, std::vector<uint8_t>& out, uint64_t limit);

}  // namespace pxm
