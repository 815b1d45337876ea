#pragma once

#include <string_view>

class QWidget;

// The program's two message boxes: "MessageBox" with Ok and "YesnoBox" with Yes and No, the
// text in the static control 101, centred on the owner. Each answers the identifier of the
// button that ended it.
namespace pxm::ui {

int ShowMessageBox(QWidget* owner, std::string_view text);
int AskYesNoBox(QWidget* owner, std::string_view text);

}  // namespace pxm::ui
