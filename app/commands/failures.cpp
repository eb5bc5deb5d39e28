#include "app/commands/failures.h"

#include "app/intake/SilencedStandardError.h"

#include <algorithm>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
constexpr qsizetype LongestQuote = 200;

QString onOneLine(QString text) {
  std::replace_if(
      text.begin(), text.end(), [](QChar c) { return c.category() == QChar::Other_Control; }, u'?');
  return text;
}
} // namespace

CommandFailure::CommandFailure(ExitStatus status, const QString& message)
    : std::runtime_error(message.toStdString()), status_(status), message_(message) {}

CommandFailure::~CommandFailure() = default;

QString quotedForMessage(const QString& argument) {
  return onOneLine(argument.size() > LongestQuote ? QString(argument.left(LongestQuote) + u'…')
                                                  : argument);
}

void printError(const QString& message) {
  const QByteArray line = QString(u"zqticker: "_s + onOneLine(message) + u'\n').toUtf8();
  const std::lock_guard spoken(SilencedStandardError::mutex());
  std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stderr);
}

} // namespace zq::app
