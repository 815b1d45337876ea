#pragma once

#include <QTextBrowser>
#include <QWidget>
#include <string_view>

// The help window: the compiled-in pages, with Index, Back and Forward.
namespace pxm::ui {

class HelpBrowser : public QTextBrowser {
  Q_OBJECT
 public:
  using QTextBrowser::QTextBrowser;
  QVariant loadResource(int type, const QUrl& name) override;
};

class HelpWindow : public QWidget {
  Q_OBJECT
 public:
  explicit HelpWindow(QWidget* parent = nullptr);
  // Shows the page of `topic` (the index for an unknown one) and brings the window up.
  void ShowTopic(std::string_view topic);
  // The topic on show.
  QString Topic() const;

 private:
  HelpBrowser* browser_;
};

}  // namespace pxm::ui
