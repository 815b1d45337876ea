#include "help/help_window.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QUrl>
#include <QVBoxLayout>

#include "common/qt_text.h"
#include "help/help_pages.h"
#include "main_window/button_pictures.h"

namespace pxm::ui {

QVariant HelpBrowser::loadResource(int type, const QUrl& name) {
  if (type == QTextDocument::HtmlResource) return ToQt(HelpHtml(FromQt(name.path())));
  return QTextBrowser::loadResource(type, name);
}

HelpWindow::HelpWindow(QWidget* parent) : QWidget(parent, Qt::Window) {
  setObjectName(QStringLiteral("HelpWindow"));
  setWindowTitle(QStringLiteral("Pixmill Help"));
  setWindowIcon(ButtonIcon(kProgramPicture));
  auto* layout = new QVBoxLayout(this);
  auto* bar = new QHBoxLayout;
  auto* index = new QPushButton(QStringLiteral("&Index"), this);
  auto* back = new QPushButton(QStringLiteral("&Back"), this);
  auto* forward = new QPushButton(QStringLiteral("&Forward"), this);
  index->setObjectName(QStringLiteral("helpIndex"));
  back->setObjectName(QStringLiteral("helpBack"));
  forward->setObjectName(QStringLiteral("helpForward"));
  index->setAccessibleName(QStringLiteral("Index"));
  back->setAccessibleName(QStringLiteral("Back"));
  forward->setAccessibleName(QStringLiteral("Forward"));
  back->setEnabled(false);
  forward->setEnabled(false);
  bar->addWidget(index);
  bar->addWidget(back);
  bar->addWidget(forward);
  bar->addStretch();
  layout->addLayout(bar);
  browser_ = new HelpBrowser(this);
  browser_->setObjectName(QStringLiteral("helpPage"));
  browser_->setAccessibleName(QStringLiteral("Help page"));
  browser_->setOpenLinks(true);
  browser_->setOpenExternalLinks(false);
  layout->addWidget(browser_);
  connect(index, &QPushButton::clicked, this, [this] { ShowTopic("index"); });
  connect(back, &QPushButton::clicked, browser_, &QTextBrowser::backward);
  connect(forward, &QPushButton::clicked, browser_, &QTextBrowser::forward);
  connect(browser_, &QTextBrowser::backwardAvailable, back, &QPushButton::setEnabled);
  connect(browser_, &QTextBrowser::forwardAvailable, forward, &QPushButton::setEnabled);
  resize(520, 440);
}

void HelpWindow::ShowTopic(std::string_view topic) {
  browser_->setSource(QUrl(ToQt(FindHelpPage(topic) ? topic : "index")));
  show();
  raise();
  activateWindow();
}

QString HelpWindow::Topic() const {
  return browser_->source().path();
}

}  // namespace pxm::ui
