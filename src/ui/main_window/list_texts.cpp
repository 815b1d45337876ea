#include "main_window/list_texts.h"

#include "core/strings.h"

namespace pxm::ui {

std::string TagCountText(size_t tagged) {
  if (tagged == 0) return std::string(LoadMessage(kStrNoFilesTagged));
  if (tagged == 1) return std::string(LoadMessage(kStrOneFileTagged));
  return FillText(LoadMessage(kStrFilesTagged), "%u", std::to_string(tagged));
}

std::string WindowTitle(std::string_view directory) {
  std::string title(LoadMessage(kStrProgramName));
  title += " - [";
  title += directory;
  title += "]";
  return title;
}

}  // namespace pxm::ui
