// How the cells of the queue window look, and what edits them.
#pragma once

#include "app/queue/Thumbnails.h"

#include <QtWidgets/QStyledItemDelegate>

namespace zq::app {

// Draws the mark of a sign that is on the strip, and pictures as small ones; makes the editors of
// texts and of showings left.
//
// Thread: main.
class QueueDelegate : public QStyledItemDelegate {
  Q_OBJECT

 public:
  // Points.
  static constexpr int RowHeight = 36; // more for a large font
  static constexpr QSize PictureRoom{72, 30};

  explicit QueueDelegate(QObject* parent = nullptr);
  ~QueueDelegate() override;

  void paint(QPainter* painter, const QStyleOptionViewItem& option,
             const QModelIndex& index) const override;
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const override;
  void setEditorData(QWidget* editor, const QModelIndex& index) const override;
  void setModelData(QWidget* editor, QAbstractItemModel* model,
                    const QModelIndex& index) const override;

  const Thumbnails& thumbnails() const { return thumbnails_; }

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;

 private:
  mutable Thumbnails thumbnails_;
};

} // namespace zq::app
