// How a command fails. Both end in one line on standard error that begins with the program's name.
#pragma once

#include <QtCore/QString>

#include <stdexcept>

namespace zq::app {

// Exit statuses of the program.
enum ExitStatus { Success = 0, RunTimeFailure = 1, UsageFailure = 2 };

// Base of the failures; `message` names the argument at fault and ends without a full stop.
class CommandFailure : public std::runtime_error {
 public:
  CommandFailure(ExitStatus status, const QString& message);
  ~CommandFailure() override;

  ExitStatus status() const { return status_; }
  const QString& message() const { return message_; }

 private:
  ExitStatus status_;
  QString message_;
};

// The command line is wrong.
class UsageError : public CommandFailure {
 public:
  explicit UsageError(const QString& message) : CommandFailure(UsageFailure, message) {}
};

// The command line is right, what it asks for is not possible.
class RunTimeError : public CommandFailure {
 public:
  explicit RunTimeError(const QString& message) : CommandFailure(RunTimeFailure, message) {}
};

// `argument` as it stands in a message: cut where it is long, control characters as "?".
QString quotedForMessage(const QString& argument);

// Writes "zqticker: message" and a line feed to standard error.
void printError(const QString& message);

} // namespace zq::app
