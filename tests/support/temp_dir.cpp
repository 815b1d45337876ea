#include "support/temp_dir.h"

#include <stdlib.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <vector>

#include "core/platform.h"

namespace pxm::test {

TempDir::TempDir() {
  std::string templ = platform::TempRoot() + "/pxm-test-XXXXXX";
  std::vector<char> buf(templ.begin(), templ.end());
  buf.push_back('\0');
  if (!mkdtemp(buf.data())) throw std::runtime_error("mkdtemp failed");
  path_ = buf.data();
}

TempDir::~TempDir() {
  std::error_code ec;
  std::filesystem::remove_all(path_, ec);
}

std::string ReadFileBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary | std::ios::ate);
  if (!in) return {};
  std::string bytes(static_cast<size_t>(in.tellg()), '\0');
  in.seekg(0);
  in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return bytes;
}

void WriteFileBytes(const std::string& path, const std::string& bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::vector<std::string> ListDirectory(const std::string& directory) {
  std::vector<std::string> names;
  std::error_code ec;
  for (const auto& entry : std::filesystem::directory_iterator(directory, ec))
    names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

std::vector<std::string> FilesUnder(const std::string& root) {
  std::vector<std::string> files;
  std::error_code ec;
  if (!std::filesystem::is_directory(root, ec)) return files;
  for (const auto& e : std::filesystem::recursive_directory_iterator(root, ec))
    if (e.is_regular_file()) files.push_back(e.path().string());
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace pxm::test
