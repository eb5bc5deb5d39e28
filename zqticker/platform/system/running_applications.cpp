#include "zqticker/platform/system/running_applications_p.h"

#include "zqticker/platform/system/system_folders_p.h"

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QHash>
#include <QtCore/QSet>
#include <QtCore/QStandardPaths>

#include <algorithm>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {
// What is read of a file: a desktop file, a process's command line or its environment.
constexpr qint64 MaximumFileSize = 1 << 20;

QByteArray contentsOf(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.read(MaximumFileSize) : QByteArray();
}

QString unescaped(const QString& text) {
  QByteArray bytes;
  const QByteArray escaped = text.toUtf8();
  for (qsizetype i = 0; i < escaped.size(); ++i) {
    bool isHex = false;
    const int code =
        escaped.sliced(i).startsWith("\\x") ? escaped.mid(i + 2, 2).toInt(&isHex, 16) : 0;
    bytes += isHex ? char(code) : escaped[i];
    i += isHex ? 3 : 0;
  }
  return QString::fromUtf8(bytes);
}

// Programs that run others: which one they run tells no desktop file.
bool runsOthers(const QString& program) {
  const QString name = QFileInfo(program).fileName();
  if (name.startsWith("python"_L1) || name.startsWith("perl"_L1) || name.startsWith("ruby"_L1))
    return true;
  static const QSet<QString> Names{
      u"sh"_s,   u"bash"_s, u"dash"_s,    u"zsh"_s,  u"busybox"_s, u"env"_s,  u"gjs"_s,
      u"node"_s, u"java"_s, u"flatpak"_s, u"snap"_s, u"pkexec"_s,  u"sudo"_s, u"gapplication"_s};
  return Names.contains(name);
}

// The first word of a command line of a desktop file.
QString firstWord(const QString& command) {
  if (!command.startsWith(u'"'))
    return command.section(u' ', 0, 0, QString::SectionSkipEmpty);
  QString word;
  for (qsizetype i = 1; i < command.size() && command[i] != u'"'; ++i) {
    if (command[i] == u'\\' && i + 1 < command.size())
      ++i;
    word += command[i];
  }
  return word;
}

// The program that a desktop file starts, without links; empty where it says none.
QString programOfDesktopFile(const QString& path) {
  bool isInEntry = false;
  for (const QByteArray& line : contentsOf(path).split('\n')) {
    if (line.startsWith('['))
      isInEntry = line.trimmed() == "[Desktop Entry]";
    const qsizetype equals = line.indexOf('=');
    if (!isInEntry || equals < 0 || line.first(equals).trimmed() != "Exec")
      continue;
    const QString word = firstWord(QString::fromUtf8(line.sliced(equals + 1)).trimmed());
    const QString found = word.startsWith(u'/') ? word : QStandardPaths::findExecutable(word);
    const QString program = QFileInfo(found).canonicalFilePath();
    return runsOthers(program) ? QString() : program;
  }
  return {};
}

// The applications by the programs that they run.
class Programs {
 public:
  explicit Programs(QStringList folders) : folders_(std::move(folders)) {}

  QStringList applicationsOf(const QString& program) {
    if (!isRead_)
      read();
    return program.isEmpty() ? QStringList() : programs_.values(program);
  }

 private:
  void read() {
    isRead_ = true;
    QSet<QString> seen;
    for (const QString& folder : folders_) {
      QDirIterator files(folder, {u"*.desktop"_s}, QDir::Files, QDirIterator::Subdirectories);
      while (files.hasNext()) {
        const QString path = files.next();
        QString identifier = QDir(folder).relativeFilePath(path).chopped(8);
        identifier.replace(u'/', u'-');
        // One in an earlier folder takes the place of it.
        if (seen.contains(identifier))
          continue;
        seen.insert(identifier);
        if (const QString program = programOfDesktopFile(path); !program.isEmpty())
          programs_.insert(program, identifier);
      }
    }
  }

  QStringList folders_;
  bool isRead_ = false;
  QMultiHash<QString, QString> programs_;
};

bool isOver(const QByteArray& status) {
  const qsizetype end = status.lastIndexOf(')');
  const char state = end >= 0 && end + 2 < status.size() ? status[end + 2] : 'X';
  return state == 'Z' || state == 'X';
}

std::optional<QString> applicationOfGroups(const QByteArray& groups) {
  for (const QByteArray& line : groups.split('\n')) {
    QStringList units = QString::fromUtf8(line).section(u':', 2).split(u'/');
    std::reverse(units.begin(), units.end());
    for (const QString& unit : units)
      if (const auto application = applicationOfUnit(unit))
        return application;
  }
  return std::nullopt;
}

// By what a launcher leaves in the environment, which a process hands on to those that it starts.
std::optional<QString> applicationOfEnvironment(const QByteArray& environment, qlonglong process) {
  QByteArray file;
  bool isOfProcess = false;
  for (const QByteArray& variable : environment.split('\0')) {
    if (variable.startsWith("GIO_LAUNCHED_DESKTOP_FILE="))
      file = variable.sliced(variable.indexOf('=') + 1);
    else if (variable.startsWith("GIO_LAUNCHED_DESKTOP_FILE_PID="))
      isOfProcess = variable.sliced(variable.indexOf('=') + 1) == QByteArray::number(process);
  }
  return isOfProcess ? identifierOfDesktopFile(QFile::decodeName(file)) : std::nullopt;
}

QStringList applicationsOf(const QString& folder, qlonglong process, Programs& programs) {
  if (const auto application = applicationOfGroups(contentsOf(folder + "/cgroup"_L1)))
    return {*application};
  if (const auto application =
          applicationOfEnvironment(contentsOf(folder + "/environ"_L1), process))
    return {*application};
  const QString program = QFileInfo(folder + "/exe"_L1).symLinkTarget();
  if (!runsOthers(program))
    return programs.applicationsOf(program);
  const QList<QByteArray> words = contentsOf(folder + "/cmdline"_L1).split('\0');
  return words.size() < 2 || !words[1].startsWith('/')
             ? QStringList()
             : programs.applicationsOf(QFileInfo(QFile::decodeName(words[1])).canonicalFilePath());
}
} // namespace

std::optional<QString> applicationOfUnit(const QString& unit) {
  if (!unit.startsWith("app-"_L1))
    return std::nullopt;
  const QString kind = unit.mid(unit.lastIndexOf(u'.'));
  QString name = unit.sliced(4).chopped(kind.size());
  if (kind == ".service"_L1)
    name = name.section(u'@', 0, 0);
  QStringList parts = name.split(u'-');
  if (kind == ".scope"_L1 && parts.size() > 1)
    parts.removeLast();
  else if (kind != ".service"_L1 && kind != ".slice"_L1)
    return std::nullopt;
  const QString identifier = unescaped(parts.last());
  return identifier.isEmpty() ? std::nullopt : std::optional(identifier);
}

std::optional<QString> identifierOfDesktopFile(const QString& path) {
  if (!path.endsWith(".desktop"_L1))
    return std::nullopt;
  const QString folder = u"/applications/"_s;
  const qsizetype at = path.indexOf(folder);
  QString identifier =
      (at < 0 ? path.mid(path.lastIndexOf(u'/') + 1) : path.mid(at + folder.size())).chopped(8);
  identifier.replace(u'/', u'-');
  return identifier.isEmpty() ? std::nullopt : std::optional(identifier);
}

QStringList desktopFileFolders() {
  QStringList folders;
  for (const QString& folder : QStringList{userDataFolder()} + sharedDataFolders())
    folders.append(folder + "/applications"_L1);
  return folders;
}

std::vector<RunningApplication> runningApplications(const QString& processFolder,
                                                    const QStringList& desktopFileFolders,
                                                    uid_t user) {
  std::vector<qlonglong> processes;
  for (const QString& name : QDir(processFolder).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
    bool isNumber = false;
    const qlonglong process = name.toLongLong(&isNumber);
    if (isNumber)
      processes.push_back(process);
  }
  std::sort(processes.begin(), processes.end());
  Programs programs(desktopFileFolders);
  QSet<QString> seen;
  std::vector<RunningApplication> applications;
  for (const qlonglong process : processes) {
    const QString folder = processFolder + u'/' + QString::number(process);
    struct stat status;
    if (::stat(QFile::encodeName(folder).constData(), &status) != 0 || status.st_uid != user ||
        isOver(contentsOf(folder + "/stat"_L1)))
      continue;
    for (const QString& application : applicationsOf(folder, process, programs)) {
      if (seen.contains(application))
        continue;
      seen.insert(application);
      applications.push_back({application, process});
    }
  }
  return applications;
}

} // namespace zq::platform
