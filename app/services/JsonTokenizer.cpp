#include "app/services/JsonTokenizer.h"

#include <QtCore/QRegularExpression>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
// Numbers and words that are longer are none.
constexpr qsizetype LongestPlain = 64;

bool isSpace(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool isPlain(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || c == '-' || c == '+' || c == '.' ||
         c == 'E';
}

bool isNumber(const QByteArray& text) {
  static const QRegularExpression form(uR"(\A-?(0|[1-9][0-9]*)(\.[0-9]+)?([eE][-+]?[0-9]+)?\z)"_s);
  return form.match(QString::fromLatin1(text)).hasMatch();
}
} // namespace

JsonTokenizer::JsonTokenizer(Receiver& receiver, int deepest, qsizetype longestText)
    : receiver_(receiver), deepest_(deepest), longestText_(longestText) {}

void JsonTokenizer::add(QByteArrayView text) {
  const char* from = text.begin();
  const char* const end = text.end();
  while (from != end && error_.isEmpty() && state_ != State::End && !receiver_.isDone()) {
    if (state_ == State::String) {
      from = readString(from, end);
    } else if (readCharacter(*from)) {
      if (*from == '\n')
        ++line_;
      ++from;
    }
  }
}

const char* JsonTokenizer::readString(const char* from, const char* end) {
  const char* to = from;
  while (to != end && *to != '"' && *to != '\\') {
    if (*to == '\n')
      ++line_;
    ++to;
  }
  if (to != from)
    flushUnit();
  append(QByteArrayView(from, to - from));
  if (to == end)
    return to;
  if (*to == '\\')
    state_ = State::Escape;
  else
    endString();
  return to + 1;
}

// False where the character ended a token and is to be read again.
bool JsonTokenizer::readCharacter(char c) {
  switch (state_) {
  case State::Escape:
    readEscape(c);
    return true;
  case State::Unicode:
    readUnicode(c);
    return true;
  case State::Number:
    if (isPlain(c) && token_.size() < LongestPlain) {
      token_ += c;
      return true;
    }
    endPlain();
    return false;
  default:
    break;
  }
  if (isSpace(c))
    return true;
  switch (state_) {
  case State::FirstElement:
    if (c == ']')
      endContainer('[');
    else
      return beginValue(c);
    return true;
  case State::Value:
    return beginValue(c);
  case State::FirstName:
  case State::Name:
    if (c == '}' && state_ == State::FirstName) {
      endContainer('{');
    } else if (c == '"') {
      token_.clear();
      isName_ = true;
      state_ = State::String;
    } else {
      unexpected(c);
    }
    return true;
  case State::Colon:
    if (c == ':')
      state_ = State::Value;
    else
      unexpected(c);
    return true;
  default:
    readAfterValue(c);
    return true;
  }
}

bool JsonTokenizer::beginValue(char c) {
  if (c == '{' || c == '[') {
    beginContainer(c);
  } else if (c == '"') {
    token_.clear();
    isName_ = false;
    state_ = State::String;
  } else if (isPlain(c)) {
    token_.clear();
    state_ = State::Number;
    return false;
  } else {
    unexpected(c);
  }
  return true;
}

void JsonTokenizer::beginContainer(char kind) {
  if (open_.size() == deepest_) {
    error_ = u"too deeply nested: more than %1 levels"_s.arg(deepest_);
    return;
  }
  open_ += kind;
  state_ = kind == '{' ? State::FirstName : State::FirstElement;
  kind == '{' ? receiver_.beginObject() : receiver_.beginList();
}

void JsonTokenizer::endContainer(char kind) {
  open_.chop(1);
  kind == '{' ? receiver_.endObject() : receiver_.endList();
  endValue();
}

void JsonTokenizer::readAfterValue(char c) {
  const char kind = open_.back();
  if (c == ',')
    state_ = kind == '{' ? State::Name : State::Value;
  else if (c == (kind == '{' ? '}' : ']'))
    endContainer(kind);
  else
    unexpected(c);
}

void JsonTokenizer::readEscape(char c) {
  state_ = State::String;
  if (c == 'u') {
    digits_ = 0;
    unit_ = 0;
    state_ = State::Unicode;
    return;
  }
  flushUnit();
  constexpr QByteArrayView Letters("bfnrt\"\\/");
  constexpr QByteArrayView Meanings("\b\f\n\r\t\"\\/");
  const qsizetype place = Letters.indexOf(c);
  if (place < 0)
    return unexpected(c);
  append(Meanings.sliced(place, 1));
}

void JsonTokenizer::readUnicode(char c) {
  const char lower = static_cast<char>(c | 0x20);
  int digit = -1;
  if (c >= '0' && c <= '9')
    digit = c - '0';
  else if (lower >= 'a' && lower <= 'f')
    digit = lower - 'a' + 10;
  if (digit < 0)
    return unexpected(c);
  unit_ = static_cast<char16_t>(unit_ << 4 | digit);
  if (++digits_ < 4)
    return;
  state_ = State::String;
  appendUnit(unit_);
}

// Joins surrogates to characters; one that stands alone becomes U+FFFD.
void JsonTokenizer::appendUnit(char16_t unit) {
  if (highSurrogate_ != 0 && QChar::isLowSurrogate(unit)) {
    const QChar pair[] = {QChar(std::exchange(highSurrogate_, u'\0')), QChar(unit)};
    append(QString(pair, 2).toUtf8());
    return;
  }
  flushUnit();
  if (QChar::isHighSurrogate(unit))
    highSurrogate_ = unit;
  else
    append(QString(QChar::isLowSurrogate(unit) ? QChar(QChar::ReplacementCharacter) : QChar(unit))
               .toUtf8());
}

void JsonTokenizer::flushUnit() {
  if (std::exchange(highSurrogate_, u'\0') != 0)
    append(QString(QChar(QChar::ReplacementCharacter)).toUtf8());
}

void JsonTokenizer::append(QByteArrayView text) {
  token_.append(text.first(std::min(text.size(), longestText_ - token_.size())));
}

void JsonTokenizer::endString() {
  flushUnit();
  // A cut may have torn the last character.
  if (token_.size() == longestText_)
    while (!token_.isEmpty() && (static_cast<unsigned char>(token_.back()) & 0x80))
      token_.chop(1);
  const QString text = QString::fromUtf8(token_);
  if (isName_) {
    state_ = State::Colon;
    receiver_.name(text);
  } else {
    receiver_.text(text);
    endValue();
  }
}

// A number or a word; what it is shows at its end.
void JsonTokenizer::endPlain() {
  const QByteArray token = std::exchange(token_, {});
  if (token == "true" || token == "false" || token == "null")
    receiver_.other();
  else if (isNumber(token))
    receiver_.text(QString::fromLatin1(token));
  else
    return fail(u"unexpected '%1'"_s.arg(QString::fromLatin1(token)));
  endValue();
}

void JsonTokenizer::endValue() {
  state_ = open_.isEmpty() ? State::End : State::AfterValue;
}

void JsonTokenizer::unexpected(char c) {
  if (c > 0x20 && c < 0x7F)
    fail(u"unexpected '%1'"_s.arg(QLatin1Char(c)));
  else
    fail(u"an unexpected character"_s);
}

void JsonTokenizer::fail(const QString& what) {
  error_ = u"JSON error in line %1: %2"_s.arg(line_).arg(what);
}

} // namespace zq::app
