#pragma once

#include <string>
#include <vector>

namespace pxm::test {

// A fresh directory under $TMPDIR, removed with its contents at the end of the scope.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  const std::string& path() const { return path_; }
  std::string operator/(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

// Whole-file helpers for tests.
std::string ReadFileBytes(const std::string& path);
void WriteFileBytes(const std::string& path, const std::string& bytes);
// Names in `directory` (no "." entries), sorted.
std::vector<std::string> ListDirectory(const std::string& directory);
// Paths of every regular file below `root` (none when it is not a directory), sorted.
std::vector<std::string> FilesUnder(const std::string& root);

}  // namespace pxm::test
