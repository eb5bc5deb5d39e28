// A program for tests of drags on a real window system: a window to drag from, or one to drop on,
// or both. Says on standard output what happens, one thing a line.
//
//   zqticker-views-probe source | target | both [copy | move | none] [unprepared | raising]
//
// The operation is what the target answers; copy by default.
#include "tests/app/probe_program.h"
#include "zqticker/views/ZQDraggingDestinationScrollView.h"
#include "zqticker/views/ZQHighlightTableView.h"

#include <QtCore/QMimeData>
#include <QtGui/QDrag>
#include <QtGui/QMouseEvent>
#include <QtGui/QStandardItemModel>
#include <QtWidgets/QApplication>
#include <QtWidgets/QHeaderView>

#include <stdexcept>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using zq::app::testing::nameOf;
using zq::app::testing::say;
using zq::app::testing::ShownWatch;

namespace {

// Lets the text "dragged" be dragged out.
class SourceWindow : public QWidget {
 public:
  SourceWindow() {
    setWindowFlags(Qt::FramelessWindowHint);
    setGeometry(20, 50, 100, 100);
    new ShownWatch(*this, u"source"_s);
  }

 protected:
  void mousePressEvent(QMouseEvent*) override { say(u"pressed"_s); }
  void mouseMoveEvent(QMouseEvent* event) override {
    if (!(event->buttons() & Qt::LeftButton))
      return;
    auto* drag = new QDrag(this);
    auto* contents = new QMimeData;
    contents->setText(u"dragged"_s);
    drag->setMimeData(contents);
    connect(drag, &QDrag::actionChanged, this,
            [](Qt::DropAction action) { say(u"action "_s % nameOf(action)); });
    say(u"dragging"_s);
    const Qt::DropAction result =
        drag->exec(Qt::CopyAction | Qt::MoveAction | Qt::LinkAction, Qt::CopyAction);
    say(u"result "_s % nameOf(result));
  }
};

// Takes drops as the options say, and has the table framed where one is possible.
class TargetDelegate : public ZQDraggingDestinationScrollViewDelegate {
 public:
  TargetDelegate(const QStringList& options, ZQHighlightTableView& table)
      : isPrepared_(!options.contains(u"unprepared"_s)), isRaising_(options.contains(u"raising"_s)),
        table_(table) {
    if (options.contains(u"none"_s))
      operation_ = DragOperationNone;
    if (options.contains(u"move"_s))
      operation_ = DragOperationMove;
  }

  void highlightDraggingTarget(bool flag) override {
    table_.setDrawHighlight(flag);
    say(u"highlight "_s % QString::number(int(flag)));
  }
  std::optional<DragOperationMask> draggingEntered(const DraggingInfo& sender) override {
    sayWhere(u"entered"_s, sender);
    say(u"mask "_s % QString::number(sender.draggingSourceOperationMask()));
    say(u"source "_s % (sender.draggingSource() ? u"within"_s : u"elsewhere"_s));
    return operation_;
  }
  std::optional<DragOperationMask> draggingUpdated(const DraggingInfo& sender) override {
    sayWhere(u"updated"_s, sender);
    return operation_;
  }
  bool draggingExited(const DraggingInfo&) override {
    say(u"exited"_s);
    return true;
  }
  std::optional<bool> prepareForDragOperation(const DraggingInfo&) override {
    say(u"prepare"_s);
    return isPrepared_;
  }
  std::optional<bool> performDragOperation(const DraggingInfo& sender) override {
    say(u"perform "_s % sender.draggingPasteboard()->text());
    if (isRaising_)
      throw std::runtime_error("this drop");
    return true;
  }
  bool concludeDragOperation(const DraggingInfo&) override {
    say(u"conclude"_s);
    return true;
  }
  bool draggingEnded(const DraggingInfo&) override {
    say(u"ended"_s);
    return true;
  }

 private:
  static void sayWhere(const QString& step, const DraggingInfo& sender) {
    const QPointF location = sender.draggingLocation();
    say(step % u' ' % QString::number(location.x()) % u' ' % QString::number(location.y()));
  }

  const bool isPrepared_;
  const bool isRaising_;
  DragOperationMask operation_ = DragOperationCopy;
  ZQHighlightTableView& table_;
};

// A table larger than the window, scrolled by the view that takes the drops.
class TargetWindow : public ZQDraggingDestinationScrollView {
 public:
  explicit TargetWindow(const QStringList& options)
      : model_(100, 20), table_(new ZQHighlightTableView), delegate_(options, *table_) {
    setWindowFlags(Qt::FramelessWindowHint);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setGeometry(300, 50, 200, 150);
    table_->setModel(&model_);
    table_->setFrameShape(QFrame::NoFrame);
    table_->horizontalHeader()->hide();
    table_->verticalHeader()->hide();
    table_->resize(400, 600);
    setWidget(table_);
    setDelegate(&delegate_);
    new ShownWatch(*table_->viewport(), u"target"_s);
  }

 private:
  QStandardItemModel model_;
  ZQHighlightTableView* table_;
  TargetDelegate delegate_;
};

} // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QPalette palette = QApplication::palette();
  palette.setColor(QPalette::Highlight, QColor(0, 255, 0));
  QApplication::setPalette(palette);
  const QStringList arguments = QApplication::arguments();
  const QString role = arguments.value(1);
  const QStringList options = arguments.mid(2);
  SourceWindow source;
  TargetWindow target(options);
  if (role != u"target")
    source.show();
  if (role != u"source")
    target.show();
  return QApplication::exec();
}
