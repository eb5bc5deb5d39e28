// The real program as a process.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QProcess>
#include <QtCore/QProcessEnvironment>
#include <QtCore/QStringList>

namespace zq::app::testing {

struct Outcome {
  int status = -1; // -1 for a crash or a program that did not end
  QByteArray output;
  QByteArray errors;
};

// An environment without a display, a session bus, a proxy and anything of Qt's.
QProcessEnvironment plainEnvironment();

// Runs the program to its end, `input` on its standard input.
Outcome runZqticker(const QStringList& arguments, const QByteArray& input = {},
                    const QProcessEnvironment& environment = plainEnvironment());

// The program while it runs; interrupted and awaited at the end.
class RunningProgram {
 public:
  RunningProgram(const QStringList& arguments, const QProcessEnvironment& environment);
  ~RunningProgram();

  QProcess& process() { return process_; }
  bool isRunning() const { return process_.state() == QProcess::Running; }
  void interrupt(int signal);
  // The exit status once it has ended, running the event loop meanwhile; -1 for a crash.
  int awaitStatus();
  // A field of /proc/PID/status in kilobytes, such as "VmHWM"; 0 where there is none.
  qint64 kilobytes(const QByteArray& field) const;

 private:
  QProcess process_;
};

} // namespace zq::app::testing
