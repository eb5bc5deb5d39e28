#include "app/services/XmlMender.h"

#include "app/services/html_entities.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
// What the reader does with a tag grows with the square of its attributes.
constexpr int MostAttributes = 128;
constexpr qsizetype LongestTag = 16 << 10; // without the values of its attributes
constexpr qsizetype LongestDocumentType = 64 << 10;
constexpr qsizetype MostExpandedBytes = 256 << 10;
constexpr qsizetype MostEntities = 256;

enum Stop : quint8 { InText = 1, InTag = 2, InValue = 4, InSection = 8 };

constexpr std::array<quint8, 256> makeStops() {
  std::array<quint8, 256> stops{};
  for (int c = 0; c < 0x20; ++c)
    if (c != '\t' && c != '\n' && c != '\r')
      stops[c] = InText | InTag | InValue | InSection;
  // Begins U+FFFE and U+FFFF.
  stops[0xEF] = InText | InTag | InValue | InSection;
  stops['<'] |= InText | InValue;
  stops['&'] |= InText | InValue;
  stops['>'] |= InText | InTag | InSection;
  stops['"'] |= InTag | InValue;
  stops['\''] |= InTag | InValue;
  stops['='] |= InTag;
  stops[']'] |= InSection;
  return stops;
}
constexpr std::array<quint8, 256> Stops = makeStops();

bool isLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool beginsName(char c) {
  return isLetter(c) || c == '_' || c == ':' || static_cast<unsigned char>(c) >= 0x80;
}

bool isInReference(char c) {
  return isLetter(c) || (c >= '0' && c <= '9') || c == '#' || c == '_' || c == '-' || c == '.' ||
         c == ':';
}

bool isSpace(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool isPredefined(QByteArrayView name) {
  return name == "amp" || name == "lt" || name == "gt" || name == "quot" || name == "apos";
}

void appendEscaped(QByteArray& output, char32_t character) {
  switch (character) {
  case U'<':
    output += "&lt;";
    break;
  case U'>':
    output += "&gt;";
    break;
  case U'&':
    output += "&amp;";
    break;
  case U'"':
    output += "&quot;";
    break;
  case U'\'':
    output += "&apos;";
    break;
  default:
    if (isXmlCharacter(character))
      output += QStringView(QChar::fromUcs4(character)).toUtf8();
  }
}

// The text of an entity in its declaration, escaped; nothing where it refers to other entities.
std::optional<QByteArray> entityText(QByteArrayView value) {
  QByteArray text;
  for (qsizetype i = 0; i < value.size(); ++i) {
    if (value[i] == '&') {
      const qsizetype end = value.indexOf(';', i);
      const QByteArrayView name = end < 0 ? QByteArrayView() : value.sliced(i + 1, end - i - 1);
      if (!name.isEmpty() && std::all_of(name.begin(), name.end(), isInReference)) {
        const std::optional<char32_t> character = characterOfReference(name);
        if (!character)
          return std::nullopt;
        appendEscaped(text, *character);
        i = end;
        continue;
      }
    }
    if (static_cast<unsigned char>(value[i]) < 0x80)
      appendEscaped(text, static_cast<unsigned char>(value[i]));
    else
      text += value[i];
  }
  return text;
}
} // namespace

QByteArray XmlMender::add(QByteArrayView text) {
  output_.reserve(text.size() + text.size() / 16);
  const char* from = text.begin();
  const char* const end = text.end();
  while (from != end && error_.isEmpty()) {
    switch (state_) {
    case State::Text:
      from = readText(from, end);
      break;
    case State::Opening:
      from = readOpening(from);
      break;
    case State::Tag:
      from = readTag(from, end);
      break;
    case State::Value:
      from = readValue(from, end);
      break;
    case State::Section:
      from = readSection(from, end);
      break;
    case State::Comment:
    case State::Instruction:
    case State::Declaration:
      from = readDropped(from, end);
      break;
    case State::DocumentType:
      from = readDocumentType(from);
      break;
    case State::Reference:
      from = readReference(from);
      break;
    }
  }
  return std::exchange(output_, {});
}

// Copies up to the next byte that matters, which it returns.
const char* XmlMender::copyUntil(quint8 stops, const char* from, const char* end) {
  const char* to = from;
  while (to != end && !(Stops[static_cast<unsigned char>(*to)] & stops))
    ++to;
  output_.append(from, to - from);
  return to;
}

// A byte that begins what XML does not allow, or may begin it.
const char* XmlMender::copySpecial(const char* from) {
  if (static_cast<unsigned char>(*from) != 0xEF)
    return from + 1;
  constexpr qsizetype Length = 3;
  const QByteArrayView character(from, Length);
  const bool isAllowed = character != "\xEF\xBF\xBE" && character != "\xEF\xBF\xBF";
  output_.append(isAllowed ? character : QByteArrayView("\xEF\xBF\xBD"));
  return from + Length;
}

const char* XmlMender::readText(const char* from, const char* end) {
  from = copyUntil(InText, from, end);
  if (from == end)
    return from;
  switch (*from) {
  case '<':
    pending_ = "<";
    state_ = State::Opening;
    return from + 1;
  case '&':
    pending_ = "&";
    stateAfterReference_ = State::Text;
    state_ = State::Reference;
    return from + 1;
  case '>':
    output_ += "&gt;";
    return from + 1;
  default:
    return copySpecial(from);
  }
}

const char* XmlMender::readOpening(const char* from) {
  const char c = *from;
  if (pending_.size() == 1 && c != '!') {
    pending_.clear();
    if (c == '?') {
      endProgress_ = 0;
      state_ = State::Instruction;
      return from + 1;
    }
    if (c != '/' && !beginsName(c)) {
      output_ += "&lt;";
      state_ = State::Text;
      return from;
    }
    output_ += '<';
    hasRoot_ = true;
    tagLength_ = 0;
    attributes_ = 0;
    state_ = State::Tag;
    // A closing tag's "/" is taken here, what begins a name by the tag.
    if (c == '/')
      output_ += *from++;
    return from;
  }
  const QByteArray read = pending_ + c;
  const auto begins = [&read](QByteArrayView mark) {
    return mark.first(std::min(read.size(), mark.size())).compare(read, Qt::CaseInsensitive) == 0;
  };
  constexpr QByteArrayView Comment("<!--");
  constexpr QByteArrayView Section("<![CDATA[");
  constexpr QByteArrayView DocumentType("<!DOCTYPE");
  if (read == Comment) {
    endProgress_ = 0;
    state_ = State::Comment;
  } else if (read == Section) {
    output_ += Section;
    endProgress_ = 0;
    state_ = State::Section;
  } else if (!hasRoot_ && begins(DocumentType)) {
    if (read.size() == DocumentType.size()) {
      quote_ = 0;
      inSubset_ = inComment_ = false;
      state_ = State::DocumentType;
    }
    pending_ = read;
    return from + 1;
  } else if (begins(Comment) || begins(Section)) {
    pending_ = read;
    return from + 1;
  } else {
    pending_.clear();
    state_ = State::Declaration;
    return from;
  }
  pending_.clear();
  return from + 1;
}

const char* XmlMender::readTag(const char* from, const char* end) {
  const char* const start = from;
  from = copyUntil(InTag, from, end);
  tagLength_ += from - start;
  if (tagLength_ > LongestTag) {
    output_.chop(tagLength_ - LongestTag);
    fail(u"a tag of more than %1 bytes"_s.arg(LongestTag));
    return from;
  }
  if (from == end)
    return from;
  ++tagLength_;
  switch (*from) {
  case '>':
    state_ = State::Text;
    break;
  case '"':
  case '\'':
    quote_ = *from;
    state_ = State::Value;
    break;
  case '=':
    if (++attributes_ > MostAttributes)
      fail(u"a tag of more than %1 attributes"_s.arg(MostAttributes));
    break;
  default:
    return copySpecial(from);
  }
  output_ += *from;
  return from + 1;
}

const char* XmlMender::readValue(const char* from, const char* end) {
  from = copyUntil(InValue, from, end);
  if (from == end)
    return from;
  switch (*from) {
  case '"':
  case '\'':
    if (*from == quote_)
      state_ = State::Tag;
    output_ += *from;
    return from + 1;
  case '&':
    pending_ = "&";
    stateAfterReference_ = State::Value;
    state_ = State::Reference;
    return from + 1;
  case '<':
    output_ += "&lt;";
    return from + 1;
  default:
    return copySpecial(from);
  }
}

const char* XmlMender::readSection(const char* from, const char* end) {
  constexpr int Brackets = 2;
  const char* const start = from;
  from = copyUntil(InSection, from, end);
  if (from != start)
    endProgress_ = 0;
  if (from == end)
    return from;
  if (*from != ']' && *from != '>') {
    // What is left out does not part what stands around it.
    if (static_cast<unsigned char>(*from) == 0xEF)
      endProgress_ = 0;
    return copySpecial(from);
  }
  output_ += *from;
  if (*from == ']') {
    endProgress_ = std::min(endProgress_ + 1, Brackets);
  } else {
    if (endProgress_ == Brackets)
      state_ = State::Text;
    endProgress_ = 0;
  }
  return from + 1;
}

const char* XmlMender::readDropped(const char* from, const char* end) {
  const char mark = state_ == State::Comment ? '-' : '?';
  const int marks = state_ == State::Comment ? 2 : state_ == State::Instruction ? 1 : 0;
  for (; from != end; ++from) {
    if (*from == '>' && endProgress_ == marks) {
      state_ = State::Text;
      endProgress_ = 0;
      return from + 1;
    }
    endProgress_ = *from == mark ? std::min(endProgress_ + 1, marks) : 0;
    if (*from == '\n')
      output_ += '\n';
  }
  return from;
}

const char* XmlMender::readDocumentType(const char* from) {
  const char c = *from;
  pending_ += c;
  if (c == '\n')
    output_ += '\n';
  if (pending_.size() > LongestDocumentType) {
    fail(u"a document type of more than %1 bytes"_s.arg(LongestDocumentType));
  } else if (inComment_) {
    inComment_ = !pending_.endsWith("-->");
  } else if (quote_ != 0) {
    if (c == quote_)
      quote_ = 0;
  } else if (c == '"' || c == '\'') {
    quote_ = c;
  } else if (c == '[') {
    inSubset_ = true;
  } else if (c == ']') {
    inSubset_ = false;
  } else if (inSubset_) {
    inComment_ = pending_.endsWith("<!--");
  } else if (c == '>') {
    endDocumentType();
  }
  return from + 1;
}

void XmlMender::endDocumentType() {
  state_ = State::Text;
  const QByteArray text = std::exchange(pending_, {});
  const auto name = std::find_if_not(text.begin() + qstrlen("<!DOCTYPE"), text.end(), isSpace);
  const auto nameEnd = std::find_if(name, text.end(), [](char c) { return !isInReference(c); });
  documentType_ = QByteArray(name, nameEnd - name).toLower();
  declareEntities(text);
}

void XmlMender::declareEntities(QByteArrayView text) {
  constexpr QByteArrayView Start("<!ENTITY");
  for (qsizetype place = text.indexOf(Start); place >= 0 && entities_.size() < MostEntities;
       place = text.indexOf(Start, place + 1)) {
    const char* const end = text.end();
    const char* name = std::find_if_not(text.begin() + place + Start.size(), end, isSpace);
    const char* nameEnd = std::find_if(name, end, [](char c) { return !isInReference(c); });
    const char* value = std::find_if_not(nameEnd, end, isSpace);
    // Parameter entities have a "%" where the name would begin.
    if (name == nameEnd || value == end)
      continue;
    const QByteArray key(name, nameEnd - name);
    Entity entity;
    if (*value == '"' || *value == '\'') {
      const char* valueEnd = std::find(value + 1, end, *value);
      const std::optional<QByteArray> plain =
          entityText(QByteArrayView(value + 1, valueEnd - value - 1));
      entity.text = plain.value_or(QByteArray());
      entity.refersToOthers = !plain;
    }
    // The first declaration counts.
    if (!entities_.contains(key))
      entities_.insert(key, entity);
  }
}

const char* XmlMender::readReference(const char* from) {
  if (*from == ';' && pending_.size() > 1) {
    state_ = stateAfterReference_;
    resolveReference();
    return from + 1;
  }
  if (isInReference(*from) && pending_.size() <= LongestReference) {
    pending_ += *from;
    return from + 1;
  }
  output_ += "&amp;" + pending_.sliced(1);
  state_ = stateAfterReference_;
  return from;
}

void XmlMender::resolveReference() {
  const QByteArray name = pending_.sliced(1);
  if (isPredefined(name)) {
    output_ += pending_ + ';';
    return;
  }
  if (const std::optional<char32_t> character = characterOfReference(name)) {
    appendEscaped(output_, *character);
    return;
  }
  const auto entity = entities_.constFind(name);
  if (entity == entities_.constEnd()) {
    output_ += "&amp;" + name + ';';
    return;
  }
  if (entity->refersToOthers)
    return fail(u"the entity \"%1\" is made of other entities"_s.arg(QString::fromUtf8(name)));
  expandedBytes_ += entity->text.size();
  if (expandedBytes_ > MostExpandedBytes)
    return fail(u"entities that stand for more than %1 bytes"_s.arg(MostExpandedBytes));
  output_ += entity->text;
}

void XmlMender::fail(const QString& error) {
  error_ = error;
}

} // namespace zq::app
