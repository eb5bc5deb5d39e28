#include "app/queue/QueueDelegate.h"

#include "app/queue/QueueModel.h"
#include "app/queue/ShowingsBox.h"
#include "app/queue/sign_changes.h"

#include <QtGui/QPainter>
#include <QtWidgets/QLineEdit>

namespace zq::app {

namespace {
// Points: the mark of what is on the strip.
constexpr QSizeF MarkSize(8, 10);
// A property of fields for numbers.
constexpr char ShownBefore[] = "shownBefore";

QColor inkOf(const QStyleOptionViewItem& option) {
  const QPalette::ColorGroup group =
      option.state & QStyle::State_Active ? QPalette::Active : QPalette::Inactive;
  return option.palette.color(
      group, option.state & QStyle::State_Selected ? QPalette::HighlightedText : QPalette::Text);
}

void drawMark(QPainter& painter, const QStyleOptionViewItem& option) {
  QRectF mark(QPointF(), MarkSize);
  mark.moveCenter(QRectF(option.rect).center());
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(inkOf(option));
  painter.drawPolygon(
      QPolygonF({mark.topLeft(), QPointF(mark.right(), mark.center().y()), mark.bottomLeft()}));
  painter.restore();
}

void drawPicture(QPainter& painter, const QRect& cell, const QImage& picture) {
  QRectF place(QPointF(), picture.deviceIndependentSize());
  place.moveCenter(QRectF(cell).center());
  // On whole pixels.
  painter.drawImage(QPointF(qRound(place.x()), qRound(place.y())), picture);
}
} // namespace

QueueDelegate::QueueDelegate(QObject* parent) : QStyledItemDelegate(parent) {}
QueueDelegate::~QueueDelegate() = default;

void QueueDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
  QStyledItemDelegate::initStyleOption(option, index);
  option->font.setBold(index.data(QueueModel::OnStripRole).toBool());
  option->fontMetrics = QFontMetrics(option->font);
}

void QueueDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const {
  QStyledItemDelegate::paint(painter, option, index);
  const auto* model = qobject_cast<const QueueModel*>(index.model());
  if (!model)
    return;
  const QueuedSign& row = model->queueRow(index.row());
  if (index.column() == QueueModel::StateColumn && row.isOnStrip)
    drawMark(*painter, option);
  if (index.column() != QueueModel::PictureColumn)
    return;
  const QImage picture = thumbnails_.thumbnail(pictureOf(row.sign), PictureRoom,
                                               painter->device()->devicePixelRatioF());
  if (!picture.isNull())
    drawPicture(*painter, option.rect, picture);
}

QSize QueueDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
  return {QStyledItemDelegate::sizeHint(option, index).width(), RowHeight};
}

QWidget* QueueDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&,
                                     const QModelIndex& index) const {
  if (index.column() == QueueModel::LoopsColumn) {
    auto* box = new ShowingsBox(parent);
    box->setFrame(false);
    box->setAccessibleName(tr("Showings left"));
    return box;
  }
  auto* line = new QLineEdit(parent);
  line->setFrame(false);
  line->setMaxLength(static_cast<int>(QueueModel::MostEditedCharacters));
  line->setAccessibleName(tr("Text"));
  return line;
}

void QueueDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const {
  // What is being typed stays, whatever changes in the queue meanwhile.
  if (editor->property("isFilled").toBool())
    return;
  editor->setProperty("isFilled", true);
  if (auto* box = qobject_cast<ShowingsBox*>(editor)) {
    box->setShowings(index.data(Qt::EditRole).toLongLong());
    box->setProperty(ShownBefore, box->value());
  } else if (auto* line = qobject_cast<QLineEdit*>(editor))
    line->setText(index.data(Qt::EditRole).toString());
}

void QueueDelegate::setModelData(QWidget* editor, QAbstractItemModel* model,
                                 const QModelIndex& index) const {
  if (auto* box = qobject_cast<ShowingsBox*>(editor)) {
    box->interpretText();
    // Numbers that the field cannot show are no change.
    if (box->value() != box->property(ShownBefore).toInt())
      model->setData(index, QVariant::fromValue<qlonglong>(box->showings()));
  } else if (const auto* line = qobject_cast<QLineEdit*>(editor)) {
    // Line breaks that the field cannot show are no change.
    if (line->isModified())
      model->setData(index, line->text());
  }
}

} // namespace zq::app
