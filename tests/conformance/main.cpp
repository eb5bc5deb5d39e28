// zqticker-conformance: carries out cases, one JSON object a line.
//
//   zqticker-conformance           prints a JSON result for each line of standard input
//   zqticker-conformance FILE...   compares what comes out with what each line of the files states,
//                                  prints what differs and a summary; - is standard input
//
// Exit status: 0, 1 where a case of a file came out otherwise, 2 where a file cannot be read.
#include "tests/conformance/Runner.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace zq::conformance;

namespace {
enum Status { Success = 0, Failure = 1, Trouble = 2 };

// The longest text of a failure that is shown.
constexpr qsizetype MaximumShown = 2000;

void print(FILE* file, const QByteArray& line) {
  std::fwrite(line.constData(), 1, std::size_t(line.size()), file);
  std::fputc('\n', file);
}

bool isBlank(const QByteArray& line) {
  return line.trimmed().isEmpty();
}

Status answer() {
  QFile input;
  if (!input.open(stdin, QIODevice::ReadOnly))
    return Trouble;
  while (true) {
    const QByteArray line = input.readLine();
    if (line.isEmpty())
      return Success;
    if (isBlank(line))
      continue;
    print(stdout, resultOfLine(line).json());
    std::fflush(stdout);
  }
}

struct Count {
  qint64 cases = 0;
  qint64 failures = 0;
};

bool check(const QString& name, Count& count) {
  QFile file(name);
  const bool isOpen =
      name == "-"_L1 ? file.open(stdin, QIODevice::ReadOnly) : file.open(QIODevice::ReadOnly);
  if (!isOpen) {
    print(stderr, name.toUtf8() + ": " + file.errorString().toUtf8());
    return false;
  }
  for (qint64 number = 1;; ++number) {
    const QByteArray line = file.readLine();
    if (line.isEmpty())
      return file.error() == QFileDevice::NoError;
    if (isBlank(line))
      continue;
    ++count.cases;
    const QByteArray failure = failureOfLine(line);
    if (failure.isEmpty())
      continue;
    ++count.failures;
    print(stdout,
          name.toUtf8() + ':' + QByteArray::number(number) + ": " + failure.left(MaximumShown));
  }
}
} // namespace

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  const QStringList names = QCoreApplication::arguments().mid(1);
  if (names.isEmpty())
    return answer();
  Count count;
  bool isReadable = true;
  for (const QString& name : names)
    isReadable = check(name, count) && isReadable;
  print(stdout, QByteArray::number(count.cases) + " cases, " + QByteArray::number(count.failures) +
                    " failures");
  return !isReadable ? Trouble : count.failures ? Failure : Success;
}
