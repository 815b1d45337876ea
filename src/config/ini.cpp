#include "config/ini.h"

#include <cinttypes>
#include <cstdio>

#include "config/format_extensions.h"
#include "config/key_table.h"
#include "core/file_io.h"
#include "core/names.h"
#include "core/platform.h"
#include "core/strings.h"

namespace pxm {

static_assert(kFormatExtensions.size() == kFormatRows, "one format switch for every row");

namespace {

// Lines are read in pieces of at most 127 characters; a longer line goes on as the next line.
constexpr size_t kLinePiece = 127;

struct KeyValue {
  std::string_view key;
  std::string_view value;
};

bool Control(char c) { return static_cast<unsigned char>(c) < 32; }

// Cuts the line at its first control character (the line end, a tab and what follows) and
// splits it into key and value. The key runs up to "=" or a character of 32 or below; the value
// starts after spaces, every "=", and spaces again.
KeyValue Split(std::string_view line) {
  size_t end = 0;
  while (end < line.size() && !Control(line[end])) ++end;
  line = line.substr(0, end);
  size_t k = 0;
  while (k < line.size() && static_cast<unsigned char>(line[k]) > 32 && line[k] != '=') ++k;
  size_t v = k;
  while (v < line.size() && line[v] == ' ') ++v;
  while (v < line.size() && line[v] == '=') ++v;
  while (v < line.size() && line[v] == ' ') ++v;
  return {line.substr(0, k), line.substr(v)};
}

// strncmp(name, text, n) == 0 for texts that end where their views end.
bool PrefixEquals(std::string_view name, std::string_view text, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    char a = i < name.size() ? name[i] : '\0';
    char b = i < text.size() ? text[i] : '\0';
    if (a != b) return false;
    if (a == '\0') return true;
  }
  return true;
}

template <typename Fn>
void ForEachLine(const std::string& path, Fn fn) {
  InputFile in;
  if (!in.Open(path)) return;
  std::string line;
  while (in.ReadLine(line, kLinePiece)) {
    if (!line.empty() && line[0] == ';') continue;
    fn(std::string_view(line));
  }
}

}  // namespace

int32_t ParseConfigNumber(std::string_view text) {
  size_t i = 0;
  bool negative = false;
  if (i < text.size() && (text[i] == '-' || text[i] == '+')) negative = text[i++] == '-';
  uint32_t value = 0;
  for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i)
    value = value * 10u + static_cast<uint32_t>(text[i] - '0');
  if (negative) value = 0u - value;
  return static_cast<int32_t>(value);
}

void ApplyConfigurationLine(std::string_view line, Settings& settings) {
  if (!line.empty() && line[0] == ';') return;
  KeyValue kv = Split(line);
  const size_t n = kv.key.size();

  // An empty key (a blank line, or one starting with a space or "=") matches the first row of
  // both tables; files have always been read this way, and the writer never makes such lines
  // except its deliberate " = 0" for the spare format row.
  std::string_view compared = kv.key;
  for (size_t row = 0; row < kFormatExtensions.size(); ++row) {
    if (PrefixEquals(kFormatExtensions[row], kv.key, n)) {
      settings.formatEnabled[row] = static_cast<uint32_t>(ParseConfigNumber(kv.value)) & 0xFFFFu;
      // The key table is then searched for the value text instead of the key.
      compared = kv.value;
      break;
    }
  }

  // A key that is a prefix of a name selects the first row beginning with it ("Dither" selects
  // DitherView); a key longer than the name never matches.
  for (const KeyRow& row : KeyTable()) {
    if (!PrefixEquals(row.name, compared, n)) continue;
    if (row.IsNumber() && row.number) {
      settings.*row.number = ParseConfigNumber(kv.value);
    } else if (row.IsText() && row.text) {
      settings.*row.text = std::string(kv.value.substr(0, kMaxSettingText));
    }
    break;
  }
}

void ReadConfiguration(const std::string& path, Settings& settings) {
  ForEachLine(path, [&](std::string_view line) { ApplyConfigurationLine(line, settings); });
}

void ReadRecentDirectories(const std::string& path, RecentDirectories& recent) {
  static constexpr std::string_view kKey = "FileMenuPath";
  ForEachLine(path, [&](std::string_view line) {
    KeyValue kv = Split(line);
    // An empty key (a blank line, the writer's " = 0") matches too. An empty value is an empty
    // path, which the add rule refuses; Add() would take it for the current directory.
    if (PrefixEquals(kKey, kv.key, kv.key.size()) && !kv.value.empty()) recent.Add(kv.value);
  });
}

std::vector<std::string> ConfigurationLines(const Settings& settings,
                                            const RecentDirectories& recent) {
  std::vector<std::string> lines;
  for (const KeyRow& row : KeyTable()) {
    std::string line(row.name);
    line += " = ";
    if (row.IsNumber() && row.number) {
      // Unsigned on purpose: -20 is written as 4294967276, which the reader wraps back.
      line += std::to_string(static_cast<uint32_t>(settings.*row.number));
    } else if (row.text) {
      line += settings.*row.text;
    }
    lines.push_back(std::move(line));
  }
  // All 42 rows, the spare one too: it comes out as " = 0".
  for (size_t row = 0; row < kFormatExtensions.size(); ++row)
    lines.push_back(std::string(kFormatExtensions[row]) + " = " +
                    std::to_string(settings.formatEnabled[row]));
  for (const std::string& dir : recent.Items()) lines.push_back("FileMenuPath = " + dir);
  return lines;
}

bool WriteConfiguration(const std::string& path, Settings& settings,
                        const RecentDirectories& recent) {
  if (settings.RememberLastDirectory) {
    std::string dir = platform::CurrentDirectory().substr(0, kMaxSettingText);
    if (!dir.empty() && dir.back() != kSeparator) dir += kSeparator;
    settings.StartupDirectory = dir.substr(0, kMaxSettingText);
  }
  std::string directory = DirectoryPart(path);
  if (!directory.empty() && !platform::MakeDirectories(directory)) return false;
  auto temporary = platform::CreateTemporaryFileIn(directory, NamePart(path));
  if (!temporary) return false;

  OutputFile out;
  if (!out.Create(*temporary)) {
    platform::RemoveFile(*temporary);
    return false;
  }
  std::string text = ";Pixmill configuration file\n";
  text += ";" + std::string(kFileSignature) + "\n";
  text += ";Last updated " + platform::CtimeNow().substr(0, 24) + "\n";
  text += ";\n[Pixmill]\n";
  for (const std::string& line : ConfigurationLines(settings, recent)) text += line + "\n";
  if (!out.Write(text.data(), text.size()) || !out.Commit()) return false;
  if (!platform::ReplaceFile(*temporary, path)) {
    platform::RemoveFile(*temporary);
    return false;
  }
  return true;
}

}  // namespace pxm
