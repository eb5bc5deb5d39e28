// A ticker that is another program, as a sender of signs sees it.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QObject>
#include <QtCore/QStringList>
#include <QtCore/QVariantMap>

#include <functional>

namespace zq::app {

// What came of a call.
struct TickerReply {
  enum class Kind {
    Taken,   // it was done
    TooMuch, // not now, since too much comes at once or waits already
    Refused, // never
    Lost,    // nobody answered; it may have been done
  };

  Kind kind = Kind::Lost;
  QString message; // of a refusal, for people
};

// Calls a ticker and tells whether there is one. Each call is answered once, from the event loop,
// unless the ticker vanishes, the link goes, or nobody is there; an answer that comes after that is
// one too many, and harmless.
//
// Thread: main.
class TickerLink : public QObject {
  Q_OBJECT

 public:
  using Done = std::function<void(const TickerReply& reply)>;

  explicit TickerLink(QObject* parent = nullptr);
  ~TickerLink() override;

  // Whether a ticker takes calls now.
  virtual bool isThere() const = 0;

  // Shows the sign in a keyed archive; `origin` has keys of display messages, and "arranged".
  virtual void show(const QByteArray& archive, const QVariantMap& origin, Done done) = 0;
  virtual void remove(const QString& identifier, Done done) = 0;
  virtual void arrange(const QStringList& identifiers, Done done) = 0;

  // A ticker is there that knows nothing of what was sent before, as far as can be told.
  Q_SIGNAL void appeared();
  Q_SIGNAL void vanished();
};

} // namespace zq::app
