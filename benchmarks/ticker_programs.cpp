#include "benchmarks/ticker_programs.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QRandomGenerator>
#include <QtCore/QStandardPaths>

#include <pwd.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {
constexpr int WordsPerLine = 11;
constexpr quint32 Seed = 8;
constexpr int EndMilliseconds = 10'000;
const QString Instance = u"99"_s;

// The folder that tickr takes, whatever $HOME says.
QDir tickrFolder() {
  const passwd* user = ::getpwuid(::getuid());
  return QDir(QString::fromLocal8Bit(user ? user->pw_dir : "") + u"/.tickr"_s);
}

QStringList tickrFiles() {
  return tickrFolder().entryList({u'*' + Instance}, QDir::Files);
}
} // namespace

QStringList newsLines(int count) {
  const QStringList words =
      u"harbour council opens bridge after storm rain moves north ministers meet again over "
      "fishing rights team wins final in extra time museum finds lost painting trains run late "
      "new school planned river falls below mark price of bread rises slightly"_s.split(u' ');
  QRandomGenerator random(Seed);
  QStringList lines;
  for (int i = 0; i < count; ++i) {
    QStringList line;
    for (int word = 0; word < WordsPerLine; ++word)
      line.append(words[random.bounded(int(words.size()))]);
    lines.append(line.join(u' '));
  }
  return lines;
}

bool writeFeed(const QString& path, const QStringList& lines) {
  QString text = u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<rss version=\"2.0\"><channel>"
                 "<title>News</title><link>http://localhost/</link><description>News</description>"
                 "\n"_s;
  for (const QString& line : lines)
    text += u"<item><title>"_s + line + u"</title><link>http://localhost/</link></item>\n"_s;
  text += u"</channel></rss>\n"_s;
  QFile file(path);
  return file.open(QIODevice::WriteOnly) && file.write(text.toUtf8()) > 0;
}

TickerProgram::TickerProgram(const QString& program, const QStringList& arguments,
                             const QProcessEnvironment& environment) {
  process_.setProcessEnvironment(environment);
  process_.setStandardOutputFile(QProcess::nullDevice());
  process_.setStandardErrorFile(QProcess::nullDevice());
  process_.start(program, arguments);
  process_.waitForStarted();
}

TickerProgram::~TickerProgram() {
  end();
}

void TickerProgram::end() {
  if (process_.state() == QProcess::NotRunning)
    return;
  process_.terminate();
  if (process_.waitForFinished(EndMilliseconds))
    return;
  process_.kill();
  process_.waitForFinished();
}

QStringList zqticker::stripArguments(const QStringList& lines, double speed) {
  QStringList arguments{u"run"_s, u"--no-window"_s, u"--continuous"_s, u"--speed"_s,
                        QString::number(speed)};
  for (const QString& line : lines)
    arguments << u"--text"_s << line;
  return arguments;
}

bool zqticker::run(const QStringList& arguments, const QProcessEnvironment& environment,
                   QByteArray* output) {
  QProcess process;
  process.setProcessEnvironment(environment);
  process.start(QStringLiteral(ZQTICKER_PROGRAM), arguments);
  if (!process.waitForFinished(-1))
    return false;
  if (output)
    *output = process.readAllStandardOutput() + process.readAllStandardError();
  return process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

bool zqticker::knowsOption(const QString& option, const QProcessEnvironment& environment) {
  QByteArray help;
  return run({u"run"_s, u"--help"_s}, environment, &help) && help.contains(option.toUtf8());
}

std::unique_ptr<TickerProgram> zqticker::start(const QStringList& arguments,
                                               const QProcessEnvironment& environment) {
  return std::make_unique<TickerProgram>(QStringLiteral(ZQTICKER_PROGRAM), arguments, environment);
}

std::unique_ptr<Tickr> Tickr::start(const QString& feed, const QProcessEnvironment& environment) {
  if (QStandardPaths::findExecutable(u"tickr"_s).isEmpty() || !tickrFiles().isEmpty())
    return nullptr;
  const QDir folder = tickrFolder();
  const bool madeFolder = !folder.exists();
  if (madeFolder && !QDir().mkpath(folder.path()))
    return nullptr;
  // With a list of feeds it does not ask for one. Selected, and of an address with a name.
  QFile list(folder.filePath(u"tickr-url-list"_s + Instance));
  const QString address = u"file://"_s + feed;
  if (!list.open(QIODevice::WriteOnly) ||
      list.write((u"*  0"_s + address + u">News\n"_s).toUtf8()) < 0)
    return nullptr;
  list.close();
  return std::unique_ptr<Tickr>(new Tickr(address, environment, madeFolder));
}

Tickr::Tickr(const QString& feed, const QProcessEnvironment& environment, bool madeFolder)
    : TickerProgram(u"tickr"_s,
                    {u"-instance-id="_s + Instance, u"-no-ui"_s, u"-disablepopups=y"_s,
                     u"-nitemsperfeed=0"_s, feed},
                    environment),
      madeFolder_(madeFolder) {}

Tickr::~Tickr() {
  end();
  QDir folder = tickrFolder();
  for (const QString& name : tickrFiles())
    folder.remove(name);
  if (madeFolder_)
    QDir().rmdir(folder.path());
}
