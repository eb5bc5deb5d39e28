// Environment variables of the process, changed for as long as a test needs them.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QtGlobal>

namespace zq::testing {

// Sets a variable and gives it back its old state at the end.
class ScopedVariable {
 public:
  ScopedVariable(const char* name, const QByteArray& value)
      : name_(name), wasSet_(qEnvironmentVariableIsSet(name)), before_(qgetenv(name)) {
    qputenv(name, value);
  }
  ~ScopedVariable() {
    if (wasSet_)
      qputenv(name_, before_);
    else
      qunsetenv(name_);
  }
  ScopedVariable(const ScopedVariable&) = delete;
  ScopedVariable& operator=(const ScopedVariable&) = delete;

 private:
  const char* name_;
  bool wasSet_;
  QByteArray before_;
};

} // namespace zq::testing
