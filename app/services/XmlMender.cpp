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

// The next byte that matters.
const char* nextStop(quint8 stops, const char* from, const char* end) {
  while (from != end && !(Stops[static_cast<unsigned char>(*from)] & stops))
    ++from;
  return from;
}

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

// The number of bytes of a predefined reference, as most are; 0 for what asks for a closer look.
qsizetype plainReference(const char* from, const char* end) {
  const qsizetype size = end - from;
  if (size >= 4 && (from[1] == 'l' || from[1] == 'g') && from[2] == 't' && from[3] == ';')
    return 4;
  const QByteArrayView text(from, size);
  for (const QByteArrayView reference : {"&amp;", "&quot;"})
    if (text.startsWith(reference))
      return reference.size();
  return 0;
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
  run_ = from;
  while (from != end && error_.isEmpty() && !isPage_) {
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
  replace(from, from, {});
  return std::exchange(output_, {});
}

// Puts `text` in the place of what stands from `from` to `to`.
void XmlMender::replace(const char* from, const char* to, QByteArrayView text) {
  output_.append(run_, from - run_);
  output_.append(text);
  run_ = to;
}

// A byte that begins what XML does not allow, or may begin it.
const char* XmlMender::readSpecial(const char* from) {
  if (static_cast<unsigned char>(*from) != 0xEF) {
    replace(from, from + 1, {});
    return from + 1;
  }
  constexpr qsizetype Length = 3;
  const QByteArrayView character(from, Length);
  if (character == "\xEF\xBF\xBE" || character == "\xEF\xBF\xBF")
    replace(from, from + Length, "\xEF\xBF\xBD");
  return from + Length;
}

const char* XmlMender::readText(const char* from, const char* end) {
  for (from = nextStop(InText, from, end); from != end; from = nextStop(InText, from, end)) {
    if (*from == '<') {
      // Nearly always a tag that needs no thought.
      if (end - from > 1 && (isLetter(from[1]) || from[1] == '/')) {
        beginTag();
        return from + (from[1] == '/' ? 2 : 1);
      }
      replace(from, from + 1, {});
      pending_ = "<";
      state_ = State::Opening;
      return from + 1;
    }
    if (*from == '&') {
      from = readAmpersand(from, end);
      if (state_ != State::Text)
        return from;
    } else if (*from == '>') {
      replace(from, from + 1, "&gt;");
      ++from;
    } else {
      from = readSpecial(from);
    }
  }
  return from;
}

const char* XmlMender::readAmpersand(const char* from, const char* end) {
  if (const qsizetype size = plainReference(from, end); size > 0)
    return from + size;
  replace(from, from + 1, {});
  pending_ = "&";
  stateAfterReference_ = state_;
  state_ = State::Reference;
  return from + 1;
}

void XmlMender::beginTag() {
  hasRoot_ = true;
  tagLength_ = 0;
  attributes_ = 0;
  state_ = State::Tag;
}

// All that is read of markup until it is known for what it is, is pending and out of the run.
const char* XmlMender::readOpening(const char* from) {
  const char c = *from;
  if (pending_.size() == 1 && c != '!') {
    pending_.clear();
    if (c == '?') {
      endProgress_ = 0;
      state_ = State::Instruction;
      replace(from, from + 1, {});
      return from + 1;
    }
    if (c != '/' && !beginsName(c)) {
      replace(from, from, "&lt;");
      state_ = State::Text;
      return from;
    }
    replace(from, from, "<");
    beginTag();
    // A closing tag's "/" is taken here, what begins a name by the tag.
    return c == '/' ? from + 1 : from;
  }
  const QByteArray read = pending_ + c;
  const auto begins = [&read](QByteArrayView mark) {
    return mark.first(std::min(read.size(), mark.size())).compare(read, Qt::CaseInsensitive) == 0;
  };
  constexpr QByteArrayView Comment("<!--");
  constexpr QByteArrayView Section("<![CDATA[");
  constexpr QByteArrayView DocumentType("<!DOCTYPE");
  pending_ = read;
  if (read == Comment) {
    endProgress_ = 0;
    state_ = State::Comment;
  } else if (read == Section) {
    endProgress_ = 0;
    state_ = State::Section;
  } else if (!hasRoot_ && begins(DocumentType)) {
    if (read.size() == DocumentType.size()) {
      quote_ = 0;
      inSubset_ = inComment_ = false;
      state_ = State::DocumentType;
    }
  } else if (!begins(Comment) && !begins(Section)) {
    state_ = State::Declaration;
    return from;
  }
  replace(from, from + 1, state_ == State::Section ? Section : QByteArrayView());
  return from + 1;
}

const char* XmlMender::readTag(const char* from, const char* end) {
  const char* const start = from;
  from = nextStop(InTag, from, end);
  tagLength_ += from - start;
  if (tagLength_ > LongestTag) {
    fail(u"a tag of more than %1 bytes"_s.arg(LongestTag));
    return from - (tagLength_ - LongestTag);
  }
  if (from == end)
    return from;
  ++tagLength_;
  switch (*from) {
  case '>':
    state_ = State::Text;
    return from + 1;
  case '"':
  case '\'':
    quote_ = *from;
    state_ = State::Value;
    return from + 1;
  case '=':
    if (++attributes_ > MostAttributes)
      fail(u"a tag of more than %1 attributes"_s.arg(MostAttributes));
    return from + 1;
  default:
    return readSpecial(from);
  }
}

const char* XmlMender::readValue(const char* from, const char* end) {
  from = nextStop(InValue, from, end);
  if (from == end)
    return from;
  switch (*from) {
  case '"':
  case '\'':
    if (*from == quote_)
      state_ = State::Tag;
    return from + 1;
  case '&':
    return readAmpersand(from, end);
  case '<':
    replace(from, from + 1, "&lt;");
    return from + 1;
  default:
    return readSpecial(from);
  }
}

const char* XmlMender::readSection(const char* from, const char* end) {
  constexpr int Brackets = 2;
  const char* const start = from;
  from = nextStop(InSection, from, end);
  if (from != start)
    endProgress_ = 0;
  if (from == end)
    return from;
  if (*from == ']') {
    endProgress_ = std::min(endProgress_ + 1, Brackets);
    return from + 1;
  }
  if (*from == '>') {
    if (endProgress_ == Brackets)
      state_ = State::Text;
    endProgress_ = 0;
    return from + 1;
  }
  // What is left out does not part what stands around it.
  if (static_cast<unsigned char>(*from) == 0xEF)
    endProgress_ = 0;
  return readSpecial(from);
}

// Markup of which nothing but the line ends stays.
const char* XmlMender::readDropped(const char* from, const char* end) {
  const char mark = state_ == State::Comment ? '-' : '?';
  const int marks = state_ == State::Comment ? 2 : state_ == State::Instruction ? 1 : 0;
  QByteArray lineEnds;
  for (; from != end && state_ != State::Text; ++from) {
    if (*from == '>' && endProgress_ == marks) {
      state_ = State::Text;
      endProgress_ = 0;
      continue;
    }
    endProgress_ = *from == mark ? std::min(endProgress_ + 1, marks) : 0;
    if (*from == '\n')
      lineEnds += '\n';
  }
  output_ += lineEnds;
  run_ = from;
  return from;
}

const char* XmlMender::readDocumentType(const char* from) {
  const char c = *from;
  pending_ += c;
  replace(from, from + 1, c == '\n' ? QByteArrayView("\n") : QByteArrayView());
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
  isPage_ = QByteArrayView(name, nameEnd - name).compare("html", Qt::CaseInsensitive) == 0;
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

// What is read of a reference is pending and out of the run.
const char* XmlMender::readReference(const char* from) {
  if (*from == ';' && pending_.size() > 1) {
    state_ = stateAfterReference_;
    replace(from, from + 1, resolvedReference());
    return from + 1;
  }
  if (isInReference(*from) && pending_.size() <= LongestReference) {
    pending_ += *from;
    replace(from, from + 1, {});
    return from + 1;
  }
  replace(from, from, QByteArray("&amp;" + pending_.sliced(1)));
  state_ = stateAfterReference_;
  return from;
}

QByteArray XmlMender::resolvedReference() {
  const QByteArray name = pending_.sliced(1);
  if (isPredefined(name))
    return pending_ + ';';
  if (const std::optional<char32_t> character = characterOfReference(name)) {
    QByteArray text;
    appendEscaped(text, *character);
    return text;
  }
  const auto entity = entities_.constFind(name);
  if (entity == entities_.constEnd())
    return "&amp;" + name + ';';
  expandedBytes_ += entity->text.size();
  if (entity->refersToOthers)
    fail(u"the entity \"%1\" is made of other entities"_s.arg(QString::fromUtf8(name)));
  else if (expandedBytes_ > MostExpandedBytes)
    fail(u"entities that stand for more than %1 bytes"_s.arg(MostExpandedBytes));
  return error_.isEmpty() ? entity->text : QByteArray();
}

void XmlMender::fail(const QString& error) {
  error_ = error;
}

} // namespace zq::app
