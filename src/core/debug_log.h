#pragma once

#include <cstdarg>
#include <string_view>

// A log for developers: why a file failed, in the words of the library that refused it, where
// the user sees only the error code. It is written on stderr when the environment variable
// PXM_LOG is "1" (read once, at the first question), and costs one test of a flag otherwise.
namespace pxm {

bool DebugLogEnabled();

// One line "pxm: <source>: <file>: <message>" on stderr (the file part left out when empty, a
// trailing line end of the message dropped). Lines written by several threads at once stay
// whole. Allocates nothing, so libraries' error callbacks may call it.
void DebugLog(std::string_view source, std::string_view file, std::string_view message);

// The same, the message made from a printf format and its arguments.
void DebugLogFormat(std::string_view source, std::string_view file, const char* format,
                    va_list arguments);

}  // namespace pxm
