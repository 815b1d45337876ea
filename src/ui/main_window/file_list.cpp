#include "main_window/file_list.h"

#include <QKeyEvent>
#include <algorithm>

#include "commands/command_ids.h"
#include "common/qt_text.h"
#include "core/strings.h"
#include "main_window/file_list_builder.h"

namespace pxm::ui {

void FileListModel::SetEntries(std::vector<std::string> entries) {
  beginResetModel();
  entries_ = std::move(entries);
  texts_.clear();
  texts_.reserve(entries_.size());
  for (const std::string& entry : entries_) texts_.push_back(PathToQt(entry));
  endResetModel();
}

int FileListModel::RowOf(const std::string& entry) const {
  auto it =
      std::lower_bound(entries_.begin(), entries_.end(), entry,
                       [](const std::string& a, const std::string& b) { return ListOrder(a, b); });
  if (it == entries_.end() || *it != entry) return -1;
  return static_cast<int>(it - entries_.begin());
}

int FileListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(entries_.size());
}

QVariant FileListModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= rowCount()) return {};
  switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
    case Qt::ToolTipRole:
      return texts_[static_cast<size_t>(index.row())];
    case Qt::SizeHintRole:
      return cellSize_;
    default:
      return {};
  }
}

FileListView::FileListView(QWidget* parent) : QListView(parent) {
  setObjectName(QStringLiteral("list201"));
  setAccessibleName(ToQt(LoadMessage(kStrFileListName)));
  // Every click toggles a tag; the arrows move without tagging and Space tags.
  setSelectionMode(QAbstractItemView::MultiSelection);
  setFlow(QListView::TopToBottom);
  setWrapping(true);
  setResizeMode(QListView::Adjust);
  setUniformItemSizes(true);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setTextElideMode(Qt::ElideMiddle);
}

void FileListView::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::SelectAll)) {
    emit commandRequested(kCmdTagAll);
  } else if (event->matches(QKeySequence::Delete)) {
    emit commandRequested(kCmdDelete);
  } else if (event->matches(QKeySequence::Refresh)) {
    emit rebuildRequested();
  } else if (event->key() == Qt::Key_Backspace && event->modifiers() == Qt::NoModifier) {
    emit parentRequested();
  } else if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) &&
             currentIndex().isValid()) {
    emit openRequested(currentIndex());
  } else {
    QListView::keyPressEvent(event);
  }
}

}  // namespace pxm::ui
