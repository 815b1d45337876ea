#pragma once

#include <string>
#include <string_view>

// Path and name helpers. Only the name part of a path ever changes case: directories stay as they
// are, because POSIX file systems are case-sensitive.
namespace pxm {

inline constexpr char kSeparator = '/';

// What follows the last separator.
std::string NamePart(std::string_view path);
// Everything up to and including the last separator ("" when there is none).
std::string DirectoryPart(std::string_view path);
// The extension of the name part without its dot ("" when the name has no dot).
std::string ExtensionOf(std::string_view path);
// The path with the name part's extension (and its dot) removed.
std::string StripExtension(std::string_view path);
// The path with its extension replaced by "." and `extension`.
std::string ReplaceExtension(std::string_view path, std::string_view extension);
// The directory with a separator at its end unless it is empty or already has one.
std::string WithTrailingSeparator(std::string_view directory);
// The directory (with the separator rule above) followed by the name.
std::string JoinPath(std::string_view directory, std::string_view name);
// The path with the name part in lower or upper case (ASCII letters only).
std::string LowerCaseName(std::string_view path);
std::string UpperCaseName(std::string_view path);
std::string ToLowerAscii(std::string_view text);
std::string ToUpperAscii(std::string_view text);
bool EqualsIgnoreCase(std::string_view a, std::string_view b);

}  // namespace pxm
