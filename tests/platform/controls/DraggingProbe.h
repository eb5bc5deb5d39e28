// Drags for tests: the toolkit's events of one, and a destination that writes down its steps.
#pragma once

#include "zqticker/platform/controls/DraggingDestination.h"

#include <QtCore/QMimeData>
#include <QtCore/QStringList>
#include <QtGui/QDragEnterEvent>
#include <QtGui/QDragLeaveEvent>
#include <QtGui/QDragMoveEvent>
#include <QtGui/QDropEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

#include <functional>

namespace zq::testing {

// Sends a widget the events of drags as the window system would. Points are in the widget's
// coordinates, y downwards.
class DragSender {
 public:
  explicit DragSender(QWidget& destination) : destination_(destination) {
    mime.setText(QStringLiteral("dragged"));
  }

  // The events afterwards: whether accepted, and with which action.
  struct Answer {
    bool isAccepted = false;
    Qt::DropAction action = Qt::IgnoreAction;
  };

  Answer enter(QPoint at = {10, 10}) {
    return send(QDragEnterEvent(at, actions, &mime, Qt::LeftButton, Qt::NoModifier));
  }
  Answer move(QPoint at = {10, 10}) {
    return send(QDragMoveEvent(at, actions, &mime, Qt::LeftButton, Qt::NoModifier));
  }
  Answer drop(QPoint at = {10, 10}) {
    return send(QDropEvent(at, actions, &mime, Qt::LeftButton, Qt::NoModifier));
  }
  void leave() {
    QDragLeaveEvent event;
    QApplication::sendEvent(&destination_, &event);
  }

  QMimeData mime;
  Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction;
  // The event last sent; to be compared only.
  const QDropEvent* lastEvent = nullptr;

 private:
  template <class Event>
  Answer send(Event event) {
    lastEvent = &event;
    QApplication::sendEvent(&destination_, &event);
    return {event.isAccepted(), event.dropAction()};
  }

  QWidget& destination_;
};

// A DraggingDestination, or another `Base` of that kind, that answers what it is told to.
template <class Base>
class DraggingProbe : public Base {
 public:
  using Info = platform::DraggingInfo;

  std::optional<platform::DragOperationMask> draggingEntered(const Info& sender) override {
    write("entered", sender);
    return enteredAnswer;
  }
  std::optional<platform::DragOperationMask> draggingUpdated(const Info& sender) override {
    write("updated", sender);
    return updatedAnswer;
  }
  bool draggingExited(const Info& sender) override {
    write("exited", sender);
    return answersTellings;
  }
  std::optional<bool> prepareForDragOperation(const Info& sender) override {
    write("prepare", sender);
    return prepareAnswer;
  }
  std::optional<bool> performDragOperation(const Info& sender) override {
    write("perform", sender);
    return performAnswer;
  }
  bool concludeDragOperation(const Info& sender) override {
    write("conclude", sender);
    return answersTellings;
  }
  bool draggingEnded(const Info& sender) override {
    write("ended", sender);
    return answersTellings;
  }

  // Answers every step, operations with `operation`.
  void answerAll(platform::DragOperationMask operation) {
    enteredAnswer = updatedAnswer = operation;
    prepareAnswer = performAnswer = true;
    answersTellings = true;
  }

  std::optional<platform::DragOperationMask> enteredAnswer;
  std::optional<platform::DragOperationMask> updatedAnswer;
  std::optional<bool> prepareAnswer;
  std::optional<bool> performAnswer;
  bool answersTellings = false;

  // The steps, and the drag of each; to be compared only.
  QStringList log;
  QList<const Info*> senders;
  // Runs in each step.
  std::function<void(const QString& step, const Info& sender)> whenTold;

 private:
  void write(const char* step, const Info& sender) {
    log.append(QString::fromLatin1(step));
    senders.append(&sender);
    // What it does may destroy the probe.
    if (const auto perform = whenTold)
      perform(QString::fromLatin1(step), sender);
  }
};

} // namespace zq::testing
