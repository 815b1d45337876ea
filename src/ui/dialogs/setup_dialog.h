#pragma once

#include <QDialog>
#include <functional>

#include "config/settings.h"
#include "dialogs/setup_state.h"

class QComboBox;
class QSpinBox;

// The Setup dialog ("SETUPBOX"): every key with a Setup control, driven by the key table.
namespace pxm::ui {

class SetupDialog : public QDialog {
  Q_OBJECT
 public:
  // Check boxes change `settings` at once; Ok takes the lists and spins. `onHelp` is the Help
  // button.
  SetupDialog(QWidget* owner, Settings& settings, std::function<void()> onHelp);

  // The result bits (SetupResult) so far.
  int Result() const { return state_.Result(); }

  void done(int result) override;

 private:
  void BuildChecks();
  void BuildLists();

  Settings& settings_;
  SetupState state_;
  QComboBox* photoCd_ = nullptr;
  QComboBox* tiff_ = nullptr;
  QComboBox* vector_ = nullptr;
  QComboBox* thumbnails_ = nullptr;
  QComboBox* drive_ = nullptr;
  QComboBox* font_ = nullptr;
  QSpinBox* jpegQuality_ = nullptr;
  QSpinBox* pngCompression_ = nullptr;
};

// Runs the dialog over `settings` and answers its result bits.
int RunSetupDialog(QWidget* owner, Settings& settings, const std::function<void()>& onHelp);

}  // namespace pxm::ui
