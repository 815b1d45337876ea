#include "support/ui_test_env.h"

#include <stdlib.h>
#include <sys/stat.h>

#include <QAbstractButton>
#include <QLabel>
#include <QWidget>
#include <filesystem>
#include <string>

namespace pxm::uitest {
namespace {

std::string& Root() {
  static std::string root;
  return root;
}

void RemoveRoot() {
  std::error_code ec;
  if (!Root().empty()) std::filesystem::remove_all(Root(), ec);
}

}  // namespace

void PrepareEnvironment() {
  const char* tmp = getenv("TMPDIR");
  std::string templ = std::string(tmp && *tmp ? tmp : "/tmp") + "/pxm-ui-test-XXXXXX";
  if (!mkdtemp(templ.data())) abort();
  Root() = templ;
  atexit(RemoveRoot);
  const std::pair<const char*, const char*> dirs[] = {
      {"HOME", "/home"},
      {"XDG_CONFIG_HOME", "/home/.config"},
      {"XDG_DATA_HOME", "/home/.local/share"},
      {"XDG_CACHE_HOME", "/home/.cache"},
      {"XDG_STATE_HOME", "/home/.local/state"},
      {"XDG_RUNTIME_DIR", "/run"},
      {"TMPDIR", "/tmp"},
  };
  for (auto [name, sub] : dirs) {
    std::string path = templ + sub;
    std::filesystem::create_directories(path);
    chmod(path.c_str(), 0700);
    setenv(name, path.c_str(), 1);
  }
  setenv("QT_QPA_PLATFORM", "offscreen", 1);
}

DialogScript::DialogScript() {
  timer_.setInterval(10);
  connect(&timer_, &QTimer::timeout, this, &DialogScript::Poll);
  timer_.start();
}

DialogScript& DialogScript::Then(const QString& name, Step step) {
  steps_.emplace_back(name, std::move(step));
  return *this;
}

DialogScript& DialogScript::Press(const QString& name, const QString& button) {
  return Then(name, [button](QWidget* dialog) { ClickButton(dialog, button); });
}

void DialogScript::Poll() {
  if (steps_.empty()) return;
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    if (!widget->isVisible() || widget->objectName() != steps_.front().first) continue;
    auto step = std::move(steps_.front().second);
    steps_.pop_front();
    auto* label = widget->findChild<QLabel*>(QStringLiteral("static101"));
    texts_ << (label ? label->text() : QString());
    // The step may end the dialog, whose exec() then returns inside this call.
    step(widget);
    return;
  }
}

void ClickButton(QWidget* dialog, const QString& name) {
  auto* button = dialog->findChild<QAbstractButton*>(name);
  QVERIFY2(button, qPrintable(QStringLiteral("no button ") + name));
  QVERIFY2(button->isEnabled(), qPrintable(QStringLiteral("button disabled: ") + name));
  button->click();
}

}  // namespace pxm::uitest
