#include "main_window/file_list_builder.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <memory>

#include "formats/format_table.h"

namespace pxm::ui {
namespace {

char LowerAscii(char c) {
  return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

struct DirCloser {
  void operator()(DIR* d) const { closedir(d); }
};

// Whether the entry is a directory; symbolic links are followed, as the shell's listing does.
bool EntryIsDirectory(const std::string& directory, const dirent& entry, bool& isFile) {
  isFile = false;
  if (entry.d_type == DT_DIR) return true;
  if (entry.d_type == DT_REG) {
    isFile = true;
    return false;
  }
  struct stat st {};
  std::string path = directory + "/" + entry.d_name;
  if (stat(path.c_str(), &st) != 0) return false;
  isFile = S_ISREG(st.st_mode);
  return S_ISDIR(st.st_mode);
}

}  // namespace

bool ListOrder(std::string_view a, std::string_view b) {
  size_t n = std::min(a.size(), b.size());
  for (size_t i = 0; i < n; ++i) {
    char x = LowerAscii(a[i]), y = LowerAscii(b[i]);
    if (x != y) return static_cast<unsigned char>(x) < static_cast<unsigned char>(y);
  }
  if (a.size() != b.size()) return a.size() < b.size();
  return a < b;
}

bool ListsAsPicture(std::string_view name, const Settings& settings) {
  if (name.empty() || name.front() == '.') return false;
  int row = FindFormat(name);
  if (row < 0) return false;
  if (FormatAt(row).caps & (kCapsClipboard | kCapsExternal)) return false;
  return (settings.formatEnabled[static_cast<size_t>(row)] & 0xFFFF) != 0;
}

bool ListsAsDirectory(std::string_view name, const Settings& settings) {
  if (name == "." || name == "..") return false;
  if (name.front() == '.') return settings.ShowHiddenDirectories != 0;
  // Without AllowDirectoryExtensions only names without an extension are listed, as the
  // pattern "*." once chose them. A leading dot marks a hidden name, not an extension.
  if (!settings.AllowDirectoryExtensions && name.find('.') != std::string_view::npos) return false;
  return true;
}

std::vector<std::string> BuildFileList(const std::string& directory, const Settings& settings) {
  std::vector<std::string> entries;
  std::unique_ptr<DIR, DirCloser> dir(opendir(directory.c_str()));
  if (dir) {
    while (const dirent* entry = readdir(dir.get())) {
      std::string_view name = entry->d_name;
      if (name == "." || name == "..") continue;
      bool isFile = false;
      if (EntryIsDirectory(directory, *entry, isFile)) {
        if (ListsAsDirectory(name, settings)) {
          // Built by appending: "literal" + string trips a false -Wrestrict of GCC 12 at -O3.
          std::string bracketed(1, '[');
          entries.push_back(bracketed.append(name).append("]"));
        }
      } else if (isFile && ListsAsPicture(name, settings)) {
        entries.emplace_back(name);
      }
    }
  }
  // The root has no parent to go to.
  if (directory != "/") entries.emplace_back("[..]");
  std::sort(entries.begin(), entries.end(),
            [](const std::string& a, const std::string& b) { return ListOrder(a, b); });
  return entries;
}

std::string DirectoryOfEntry(std::string_view entry) {
  if (entry.size() >= 2 && entry.front() == '[' && entry.back() == ']')
    return std::string(entry.substr(1, entry.size() - 2));
  return std::string(entry);
}

}  // namespace pxm::ui
