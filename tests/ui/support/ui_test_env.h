#pragma once

#include <QApplication>
#include <QObject>
#include <QString>
#include <QTest>
#include <QTimer>
#include <deque>
#include <functional>
#include <string>

// What every desktop-program test needs: an environment of its own and a way to answer the
// modal dialogs the code under test opens.
namespace pxm::uitest {

// Gives the process a HOME and XDG directories of its own (removed when it ends) and the
// offscreen platform, before the QApplication exists.
void PrepareEnvironment();

// The modal dialogs a test expects, in order: when the next one (by objectName) is on screen,
// its step runs on it (reads its texts, clicks a button). A script lives for one test.
class DialogScript : public QObject {
  Q_OBJECT
 public:
  using Step = std::function<void(QWidget* dialog)>;

  DialogScript();
  // Expects the dialog `name` next and runs `step` on it.
  DialogScript& Then(const QString& name, Step step);
  // Expects the dialog `name` next and presses its button `button` (an objectName).
  DialogScript& Press(const QString& name, const QString& button);
  // Whether every expected dialog came.
  bool Done() const { return steps_.empty(); }
  // The text (control 101) of every dialog that came, in order.
  const QStringList& Texts() const { return texts_; }

 private:
  void Poll();

  std::deque<std::pair<QString, Step>> steps_;
  QStringList texts_;
  QTimer timer_;
};

// Presses the button `name` of `dialog`.
void ClickButton(QWidget* dialog, const QString& name);

}  // namespace pxm::uitest

#define PXM_UI_TEST_MAIN(TestClass)         \
  int main(int argc, char** argv) {         \
    pxm::uitest::PrepareEnvironment();      \
    QApplication app(argc, argv);           \
    TestClass test;                         \
    return QTest::qExec(&test, argc, argv); \
  }
