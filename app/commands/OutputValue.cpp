#include "app/commands/OutputValue.h"

#include "app/commands/size_text.h"

#include "zqticker/platform/archiving/number_text.h"

#include <QtCore/QStringList>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {

bool isEscaped(QStringView text, qsizetype i) {
  const QChar c = text[i];
  if (c.isHighSurrogate())
    return i + 1 == text.size() || !text[i + 1].isLowSurrogate();
  if (c.isLowSurrogate())
    return i == 0 || !text[i - 1].isHighSurrogate();
  return c.unicode() < 0x20 || (c.unicode() >= 0x7F && c.unicode() < 0xA0) ||
         c.unicode() == 0x2028 || c.unicode() == 0x2029;
}

// Keys of letters, digits and a few signs stand in a tree without quotes.
bool isPlain(QStringView key) {
  return !key.isEmpty() &&
         std::all_of(key.begin(), key.end(),
                     [](QChar c) { return c.isLetterOrNumber() || u"$._-%:/ []"_s.contains(c); }) &&
         !key.startsWith(u' ') && !key.endsWith(u' ');
}

QString label(const QString& key) {
  return isPlain(key) ? key : OutputValue::quoted(key);
}

} // namespace

QString OutputValue::quoted(QStringView text) {
  QString quoted = u"\""_s;
  for (qsizetype i = 0; i < text.size(); ++i) {
    const char16_t unit = text[i].unicode();
    if (unit == u'"' || unit == u'\\') {
      quoted += u'\\';
      quoted += QChar(unit);
    } else if (unit == u'\n') {
      quoted += u"\\n"_s;
    } else if (unit == u'\t') {
      quoted += u"\\t"_s;
    } else if (isEscaped(text, i)) {
      quoted += u"\\u%1"_s.arg(uint(unit), 4, 16, '0'_L1);
    } else {
      quoted += QChar(unit);
    }
  }
  return quoted + u'"';
}

OutputValue OutputValue::boolean(bool value) {
  OutputValue result;
  result.text_ = value ? u"true"_s : u"false"_s;
  return result;
}

OutputValue OutputValue::integer(qint64 value) {
  OutputValue result;
  result.text_ = QString::number(value);
  return result;
}

OutputValue OutputValue::unsignedInteger(quint64 value) {
  OutputValue result;
  result.text_ = QString::number(value);
  return result;
}

OutputValue OutputValue::real(double value) {
  OutputValue result;
  result.text_ = platform::textOfNumber(value);
  if (!std::isfinite(value))
    result.text_ = quoted(result.text_);
  else if (!result.text_.contains(u'.') && !result.text_.contains(u'e'))
    result.text_ += u".0"_s;
  return result;
}

OutputValue OutputValue::string(QStringView value) {
  OutputValue result;
  result.text_ = quoted(value);
  if (std::any_of(value.begin(), value.end(), [](QChar c) { return c.isSurrogate(); }))
    result.note_ = u" (%1 code units)"_s.arg(value.size());
  return result;
}

OutputValue OutputValue::list() {
  OutputValue result;
  result.shape_ = Shape::List;
  return result;
}

OutputValue OutputValue::map() {
  OutputValue result;
  result.shape_ = Shape::Map;
  return result;
}

void OutputValue::append(OutputValue element) {
  members_.emplace_back(QString(), std::move(element));
}

void OutputValue::insert(const QString& key, OutputValue value) {
  members_.emplace_back(key, std::move(value));
}

const OutputValue* OutputValue::find(QStringView key) const {
  const auto found = std::find_if(members_.begin(), members_.end(),
                                  [key](const Member& member) { return member.first == key; });
  return found == members_.end() ? nullptr : &found->second;
}

// Whether the value fits on the line of its key: a scalar, or a list of a few scalars.
bool OutputValue::isShort() const {
  constexpr std::size_t FewElements = 6;
  if (shape_ == Shape::Scalar)
    return true;
  return shape_ == Shape::List && members_.size() <= FewElements &&
         std::all_of(members_.begin(), members_.end(),
                     [](const Member& member) { return member.second.shape_ == Shape::Scalar; });
}

QString OutputValue::json(int indent) const {
  if (shape_ == Shape::Scalar)
    return text_;
  const bool isMapping = shape_ == Shape::Map;
  if (members_.empty())
    return isMapping ? u"{}"_s : u"[]"_s;
  const bool onOneLine = isShort();
  const QString inner = onOneLine ? QString() : u'\n' + QString(2 * (indent + 1), u' ');
  QString text(isMapping ? u'{' : u'[');
  for (std::size_t i = 0; i < members_.size(); ++i) {
    if (i > 0)
      text += onOneLine ? u", "_s : u","_s;
    text += inner;
    if (isMapping)
      text += quoted(members_[i].first) + u": "_s;
    text += members_[i].second.json(indent + 1);
  }
  if (!onOneLine)
    text += u'\n' + QString(2 * indent, u' ');
  return text + QChar(isMapping ? u'}' : u']');
}

// What a tree says of a value beside its key; `shownKeys` receives the members that it covers.
QString OutputValue::heading(QStringList& shownKeys) const {
  if (shape_ != Shape::Map)
    return isShort() ? QString(json() + note_) : QString();
  const auto take = [&](const QString& key) -> const OutputValue* {
    const OutputValue* value = find(key);
    if (value)
      shownKeys.append(key);
    return value;
  };
  if (const OutputValue* reference = take(u"$ref"_s))
    return u"-> #"_s + reference->text_;
  if (const OutputValue* hex = take(u"$hex"_s)) {
    constexpr qsizetype LongestHex = 128;
    const QString digits = hex->text_.mid(1, hex->text_.size() - 2);
    const OutputValue* text = take(u"$text"_s);
    QString shown = u"data of %1 "_s.arg(sizeText(digits.size() / 2));
    shown += digits.size() > LongestHex ? QString(digits.left(LongestHex) + u"..."_s) : digits;
    return text ? QString(shown + u' ' + text->text_) : shown;
  }
  const OutputValue* className = find(u"$class");
  if (!className)
    return members_.empty() ? u"(none)"_s : QString();
  QString text = className->text_.mid(1, className->text_.size() - 2);
  take(u"$class"_s);
  take(u"$classes"_s);
  if (const OutputValue* number = take(u"$id"_s))
    text += u" #"_s + number->text_;
  if (const OutputValue* value = find(u"$value"); value && value->isShort()) {
    take(u"$value"_s);
    text += u' ' + value->json();
  }
  return text;
}

void OutputValue::appendTree(QString& lines, const QString& key, int indent) const {
  QStringList shownKeys;
  const QString head = heading(shownKeys);
  lines += QString(2 * indent, u' ') + key + u':';
  if (!head.isEmpty())
    lines += u' ' + head;
  lines += u'\n';
  if (isShort())
    return;
  for (std::size_t i = 0; i < members_.size(); ++i) {
    const auto& [name, value] = members_[i];
    if (shape_ == Shape::List)
      value.appendTree(lines, u"[%1]"_s.arg(i), indent + 1);
    else if (!shownKeys.contains(name))
      value.appendTree(lines, label(name), indent + 1);
  }
}

QString OutputValue::treeOfMembers() const {
  QString lines;
  for (const auto& [key, value] : members_)
    value.appendTree(lines, label(key), 0);
  return lines;
}

} // namespace zq::app
