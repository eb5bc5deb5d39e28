#include "app/services/FeedDecoder.h"

#include <QtCore/QUtf8StringView>

#include <unicode/ucnv.h>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
// An XML declaration that is longer is not looked for.
constexpr qsizetype LongestDeclaration = 1024;
constexpr qsizetype BytesOfPattern = 4;

struct Mark {
  QByteArrayView bytes;
  const char* encoding;
};

// Longer ones first: that of UTF-16 begins that of UTF-32.
constexpr std::array<Mark, 5> Marks = {{{{"\xFF\xFE\0\0", 4}, "UTF-32LE"},
                                        {{"\0\0\xFE\xFF", 4}, "UTF-32BE"},
                                        {"\xEF\xBB\xBF", "UTF-8"},
                                        {"\xFE\xFF", "UTF-16BE"},
                                        {"\xFF\xFE", "UTF-16LE"}}};

// UTF-16 without a mark shows by the zero beside its first character, which is of ASCII.
QString encodingByPattern(QByteArrayView bytes) {
  if (bytes.size() < 2 || (bytes[0] == 0) == (bytes[1] == 0))
    return {};
  return bytes[0] == 0 ? u"UTF-16BE"_s : u"UTF-16LE"_s;
}

// The bytes as far as an XML declaration may still be open in them.
bool awaitsDeclaration(QByteArrayView bytes) {
  const QByteArrayView text = bytes.trimmed();
  constexpr QByteArrayView Start("<?xml");
  if (bytes.size() >= LongestDeclaration)
    return false;
  return text.size() < Start.size() ? Start.startsWith(text)
                                    : text.startsWith(Start) && !text.contains("?>");
}

// The encoding that an XML declaration names, or nothing.
QString declaredEncoding(QByteArrayView bytes) {
  const QByteArrayView text = bytes.first(std::min(bytes.size(), LongestDeclaration)).trimmed();
  if (!text.startsWith("<?xml"))
    return {};
  const QByteArrayView declaration = text.first(std::max<qsizetype>(text.indexOf("?>"), 0));
  const qsizetype place = declaration.indexOf("encoding");
  if (place < 0)
    return {};
  const QByteArrayView rest = declaration.sliced(place);
  const auto isQuote = [](char c) { return c == '"' || c == '\''; };
  const auto open = std::find_if(rest.begin(), rest.end(), isQuote);
  const auto close = open == rest.end() ? open : std::find(open + 1, rest.end(), *open);
  if (close == rest.end())
    return {};
  return QString::fromLatin1(open + 1, close - open - 1).trimmed();
}

bool isUtf8(const QString& name) {
  return name.compare("utf-8"_L1, Qt::CaseInsensitive) == 0 ||
         name.compare("utf8"_L1, Qt::CaseInsensitive) == 0;
}

// What is called ISO 8859-1 or ASCII is windows-1252 wherever the three differ.
QString meantEncoding(const QString& name) {
  static const QStringList latin{u"iso-8859-1"_s, u"iso8859-1"_s, u"iso_8859-1"_s, u"latin1"_s,
                                 u"latin-1"_s,    u"us-ascii"_s,  u"ascii"_s};
  return latin.contains(name, Qt::CaseInsensitive) ? u"windows-1252"_s : name;
}

// Bytes at the end that begin a character and lack its rest.
qsizetype unfinishedBytes(QByteArrayView bytes) {
  constexpr qsizetype LongestCharacter = 4;
  for (qsizetype count = 1; count < LongestCharacter && count <= bytes.size(); ++count) {
    const auto byte = static_cast<unsigned char>(bytes[bytes.size() - count]);
    if ((byte & 0xC0) == 0x80)
      continue;
    const qsizetype length = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : byte >= 0xC0 ? 2 : 1;
    return length > count ? count : 0;
  }
  return 0;
}
} // namespace

void FeedDecoder::CloseConverter::operator()(UConverter* converter) const {
  ucnv_close(converter);
}

FeedDecoder::FeedDecoder(QString charset) : charset_(std::move(charset)) {}

FeedDecoder::~FeedDecoder() = default;

QByteArray FeedDecoder::add(QByteArrayView bytes) {
  if (!encoding_.isEmpty())
    return decode(bytes, false);
  pending_.append(bytes);
  if (!decide(false))
    return {};
  return decode(std::exchange(pending_, {}), false);
}

QByteArray FeedDecoder::finish() {
  if (encoding_.isEmpty()) {
    decide(true);
    return decode(std::exchange(pending_, {}), true);
  }
  return decode({}, true);
}

// True once the encoding is known; what is pending is then text of the document.
bool FeedDecoder::decide(bool atEnd) {
  if (!atEnd && pending_.size() < BytesOfPattern)
    return false;
  for (const Mark& mark : Marks) {
    if (pending_.startsWith(mark.bytes)) {
      pending_.remove(0, mark.bytes.size());
      return choose(QString::fromLatin1(mark.encoding));
    }
  }
  if (!charset_.isEmpty()) {
    // UTF-16 leaves the order of its bytes to the mark that is not there.
    const bool needsOrder = charset_.compare("utf-16"_L1, Qt::CaseInsensitive) == 0;
    const QString pattern = needsOrder ? encodingByPattern(pending_) : QString();
    if (choose(!needsOrder ? charset_ : pattern.isEmpty() ? u"UTF-16BE"_s : pattern))
      return true;
    unknown_.append(std::exchange(charset_, {}));
  }
  if (const QString pattern = encodingByPattern(pending_); !pattern.isEmpty())
    return choose(pattern);
  if (!atEnd && awaitsDeclaration(pending_))
    return false;
  const QString declared = declaredEncoding(pending_);
  // The declaration was read byte by byte, so that wider units cannot be what is meant.
  if (!declared.isEmpty() && !declared.startsWith("utf-16"_L1, Qt::CaseInsensitive) &&
      !declared.startsWith("utf-32"_L1, Qt::CaseInsensitive)) {
    if (choose(declared))
      return true;
    unknown_.append(declared);
  }
  return choose(u"UTF-8"_s);
}

bool FeedDecoder::choose(const QString& name) {
  if (isUtf8(name)) {
    encoding_ = u"UTF-8"_s;
    return true;
  }
  UErrorCode status = U_ZERO_ERROR;
  converter_.reset(ucnv_open(meantEncoding(name).toUtf8().constData(), &status));
  if (U_FAILURE(status) || !converter_) {
    converter_.reset();
    return false;
  }
  encoding_ = name;
  return true;
}

QByteArray FeedDecoder::decode(QByteArrayView bytes, bool atEnd) {
  return converter_ ? decodeByConverter(bytes, atEnd) : decodeUtf8(bytes, atEnd);
}

QByteArray FeedDecoder::decodeUtf8(QByteArrayView bytes, bool atEnd) {
  QByteArray text = std::exchange(pending_, {});
  text.append(bytes);
  if (!atEnd) {
    const qsizetype unfinished = unfinishedBytes(text);
    pending_ = text.last(unfinished);
    text.chop(unfinished);
  }
  if (QUtf8StringView(text.constData(), text.size()).isValidUtf8())
    return text;
  return QString::fromUtf8(text).toUtf8();
}

QByteArray FeedDecoder::decodeByConverter(QByteArrayView bytes, bool atEnd) {
  QString text = std::exchange(pendingText_, {});
  std::array<char16_t, 4096> buffer;
  const char* source = bytes.begin();
  UErrorCode status = U_BUFFER_OVERFLOW_ERROR;
  while (status == U_BUFFER_OVERFLOW_ERROR) {
    status = U_ZERO_ERROR;
    char16_t* target = buffer.data();
    ucnv_toUnicode(converter_.get(), &target, buffer.data() + buffer.size(), &source, bytes.end(),
                   nullptr, atEnd, &status);
    text.append(reinterpret_cast<const QChar*>(buffer.data()), target - buffer.data());
  }
  if (!atEnd && !text.isEmpty() && text.back().isHighSurrogate()) {
    pendingText_ = text.right(1);
    text.chop(1);
  }
  return text.toUtf8();
}

} // namespace zq::app
