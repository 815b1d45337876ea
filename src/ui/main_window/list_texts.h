#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace pxm::ui {

// The tag count cell: "No files tagged", "One file tagged" or "%u files tagged".
std::string TagCountText(size_t tagged);

// The main window's title for the directory the list shows: "Pixmill - [directory]".
std::string WindowTitle(std::string_view directory);

}  // namespace pxm::ui
