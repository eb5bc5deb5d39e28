// Why a call from the bus is refused.
#pragma once

#include <QtCore/QString>

#include <stdexcept>

namespace zq::app {

// Becomes the error reply to a call. `message` is a sentence without a full stop.
class BusFailure : public std::runtime_error {
 public:
  enum class Kind { InvalidMessage, InvalidSign, TooMuch, Failed, InvalidArguments };

  BusFailure(Kind kind, const QString& message);
  ~BusFailure() override;

  Kind kind() const { return kind_; }
  const QString& message() const { return message_; }
  // The name of the error on the bus.
  QString errorName() const;

 private:
  Kind kind_;
  QString message_;
};

} // namespace zq::app
