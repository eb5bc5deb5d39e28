// Where messages and signs of other programs come in.
#pragma once

#include "app/intake/ArrivingSign.h"
#include "app/intake/DisplayMessage.h"
#include "app/intake/FloodLog.h"
#include "app/intake/HeldSigns.h"
#include "app/intake/SenderLimits.h"

#include <QtCore/QObject>
#include <QtCore/QTimer>

#include <functional>
#include <stdexcept>

namespace zq::app {

// A limit is exceeded; the same message may be taken later.
class LimitError : public std::runtime_error {
 public:
  explicit LimitError(const QString& message)
      : std::runtime_error(message.toStdString()), message_(message) {}
  ~LimitError() override;

  const QString& message() const { return message_; }

 private:
  QString message_;
};

// Checks what comes over the bus against the limits, decodes it, and hands the signs on. Limits
// come first: what exceeds them is not decoded. Refusals are logged, a flood of them in a few
// lines.
//
// Thread: main.
class MessageIntake : public QObject {
  Q_OBJECT

 public:
  // Whether the sign belongs to an order that its sender arranges.
  enum class Order { Free, Arranged };

  // What the intake works for.
  struct Host {
    // The look of plain texts at this moment.
    std::function<MessageStyle()> style;
    // Shows a sign; its identifier, or a made one where it has none.
    std::function<QString(const platform::Ref<ZQTickerSign>& sign, const SignOrigin& origin,
                          Order order)>
        show;
    // The seconds of a monotonic clock.
    std::function<double()> time;
  };

  explicit MessageIntake(Host host, QObject* parent = nullptr);
  ~MessageIntake() override;

  // The sign that `dictionary` describes, see readMessage; `connection` is the sender's unique name
  // on the bus. Raises MessageError and LimitError, as showing does, for which the intake must be
  // there.
  ArrivingSign takeMessage(const QVariantMap& dictionary, const QString& connection);

  // The sign in `archive`, see readArchivedSign. `origin` has the keys of readOrigin and the
  // boolean "arranged". Raises SignError, MessageError (for `origin`) and LimitError, as showing
  // does.
  ArrivingSign takeSign(const QByteArray& archive, const QVariantMap& origin,
                        const QString& connection);

  // Counts a call that shows nothing (removing, arranging) with so many bytes of arguments. Raises
  // LimitError.
  void admitCall(qsizetype bytes, const QString& connection);

  // Logs what is due about refusals. The intake does so itself from the event loop.
  void reportRefusals();

 private:
  void admit(const SenderKey& sender, qsizetype bytes);
  WorkGate gateFor(const SenderKey& sender);
  [[noreturn]] void refuse(const SenderKey& sender, const SenderLimits::Refusal& refusal);
  QString hold(const platform::Ref<ZQTickerSign>& sign, const SignOrigin& origin, Order order,
               const SenderKey& sender);
  void note(const QString& subject, const QString& detail);

  Host host_;
  SenderLimits limits_;
  HeldSigns held_;
  FloodLog refusals_;
  QTimer reportTimer_;
};

} // namespace zq::app
