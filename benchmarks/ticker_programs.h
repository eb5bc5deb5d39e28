// The programs that ticker_benchmark measures.
#pragma once

#include <QtCore/QProcess>
#include <QtCore/QProcessEnvironment>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <memory>

// A program that runs until it is told to end, with an open standard input.
class TickerProgram {
 public:
  TickerProgram(const QString& program, const QStringList& arguments,
                const QProcessEnvironment& environment);
  virtual ~TickerProgram();

  qint64 process() const { return process_.processId(); }
  bool isRunning() const { return process_.state() == QProcess::Running; }
  // Asks it to end, and waits.
  void end();

 private:
  QProcess process_;
};

// As many lines of news, no two alike.
QStringList newsLines(int count);

// zqticker, built beside this program.
namespace zqticker {
// Arguments of a strip that shows the lines again and again at so many points a second.
QStringList stripArguments(const QStringList& lines, double speed);
// Runs a command to its end. Whether it succeeded.
bool run(const QStringList& arguments, const QProcessEnvironment& environment,
         QByteArray* output = nullptr);
// Whether `zqticker run` knows the option.
bool knowsOption(const QString& option, const QProcessEnvironment& environment);
std::unique_ptr<TickerProgram> start(const QStringList& arguments,
                                     const QProcessEnvironment& environment);
} // namespace zqticker

// tickr, the distribution's ticker of feeds, as it comes out of its package: its own font, colors,
// place and speed. What differs from its defaults: it shows all items of the feed instead of five
// (-nitemsperfeed=0), it asks no questions (-no-ui, -disablepopups=y), and it keeps its files under
// a number of their own (-instance-id=99), since it takes no other folder than that of the user.
class Tickr : public TickerProgram {
 public:
  // Null where it is not installed, or the user has files under that number.
  static std::unique_ptr<Tickr> start(const QString& feed, const QProcessEnvironment& environment);
  ~Tickr() override;

 private:
  Tickr(const QString& feed, const QProcessEnvironment& environment, bool madeFolder);

  bool madeFolder_;
};

// Writes an RSS feed with the lines as titles.
bool writeFeed(const QString& path, const QStringList& lines);
