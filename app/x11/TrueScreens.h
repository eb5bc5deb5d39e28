// Where the screens really are.
#pragma once

#include "app/OncePerTurn.h"
#include "app/x11/XConnection.h"

#include <QtCore/QHash>
#include <QtCore/QObject>
#include <QtCore/QRect>
#include <QtCore/QString>

class QScreen;

namespace zq::app {

// The places of Qt's screens as the X server has them. Where a screen goes and comes back with
// another size before Qt has looked, Qt takes it for the one that it knew and keeps its old size
// for good. Positions on the screen begin at the same number in points and in device pixels.
//
// Where there is no X server, or it does not know a screen by its name, Qt's word is taken.
//
// Thread: main.
class TrueScreens : public QObject {
  Q_OBJECT

 public:
  explicit TrueScreens(QObject* parent = nullptr);
  ~TrueScreens() override;

  // On the X screen, in device pixels.
  QRect native(const QScreen& screen) const;
  // The same in points.
  QRect geometry(const QScreen& screen) const;

  // The X server has other screens than before, or others where they were.
  Q_SIGNAL void changed();

 private:
  using Rects = QHash<QString, QRect>;

  void listen();
  void receive(const xcb_generic_event_t* event);
  Rects read();
  QString nameOf(xcb_atom_t atom);

  std::shared_ptr<XConnection> connection_; // null where nothing can be asked
  std::uint8_t firstEvent_ = 0;             // of those of the extension
  Rects rects_;                             // by the names of the screens
  QHash<xcb_atom_t, QString> names_;
  OncePerTurn reading_;
};

} // namespace zq::app
