#pragma once

#include <string>

#include "config/recent_dirs.h"

namespace pxm::ui {

// What lives beside the main window for the whole run: where PXM.INI is and the recent
// directories of the File menu.
struct AppState {
  std::string iniPath;  // empty when there is no place for the file
  RecentDirectories recent;
};

}  // namespace pxm::ui
