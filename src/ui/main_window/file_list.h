#pragma once

#include <QAbstractListModel>
#include <QListView>
#include <QSize>
#include <QString>
#include <string>
#include <vector>

// The file list: a sorted, multi-column list in which a click toggles an entry's tag. Tags are
// the list's selection and nothing else.
namespace pxm::ui {

class FileListModel : public QAbstractListModel {
  Q_OBJECT
 public:
  using QAbstractListModel::QAbstractListModel;

  // Replaces every entry (already in the list's order).
  void SetEntries(std::vector<std::string> entries);
  // Every entry is drawn in a cell of this size, so that the columns line up.
  void SetCellSize(QSize size) { cellSize_ = size; }

  const std::vector<std::string>& Entries() const { return entries_; }
  const std::string& Entry(int row) const { return entries_[static_cast<size_t>(row)]; }
  // The row of an entry, or -1.
  int RowOf(const std::string& entry) const;

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;

 private:
  std::vector<std::string> entries_;
  std::vector<QString> texts_;
  QSize cellSize_{100, 16};
};

class FileListView : public QListView {
  Q_OBJECT
 public:
  explicit FileListView(QWidget* parent = nullptr);

 signals:
  // Enter on an entry: open it as a double-click would.
  void openRequested(const QModelIndex& index);
  // Backspace: go to "[..]".
  void parentRequested();
  // F5: build the list again.
  void rebuildRequested();
  // Ctrl+A and Delete send their commands.
  void commandRequested(int id);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
};

}  // namespace pxm::ui
