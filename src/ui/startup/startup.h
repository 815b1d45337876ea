#pragma once

class QApplication;

namespace pxm::ui {

// Starts the program in its fixed order: the single-instance rule, the start-up logo, the read
// of PXM.INI, the main window with its recent directories and file list, then thumbnail mode
// when it is asked for; runs until the main window closes. Answers the exit status.
int RunPixmill(QApplication& app);

}  // namespace pxm::ui
