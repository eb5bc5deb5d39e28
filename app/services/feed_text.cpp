#include "app/services/feed_text.h"

#include "app/services/html_entities.h"

#include <QtCore/QTextBoundaryFinder>

#include <algorithm>
#include <array>
#include <string_view>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
constexpr qsizetype LongestAddress = 4096;
constexpr qsizetype LongestTagName = 12;

// Elements that are taken for markup; "vector<int>" is not. In the order of their letters.
constexpr std::array Elements = std::to_array<std::u16string_view>({
    u"a",          u"abbr",     u"acronym", u"address", u"article", u"aside",      u"audio",
    u"b",          u"bdi",      u"bdo",     u"big",     u"blink",   u"blockquote", u"body",
    u"br",         u"button",   u"center",  u"cite",    u"code",    u"dd",         u"del",
    u"details",    u"dfn",      u"div",     u"dl",      u"dt",      u"em",         u"embed",
    u"figcaption", u"figure",   u"font",    u"footer",  u"form",    u"h1",         u"h2",
    u"h3",         u"h4",       u"h5",      u"h6",      u"head",    u"header",     u"hr",
    u"html",       u"i",        u"iframe",  u"img",     u"input",   u"ins",        u"kbd",
    u"label",      u"li",       u"link",    u"main",    u"mark",    u"meta",       u"nav",
    u"nobr",       u"noscript", u"object",  u"ol",      u"p",       u"param",      u"picture",
    u"pre",        u"q",        u"s",       u"samp",    u"script",  u"section",    u"small",
    u"source",     u"span",     u"strike",  u"strong",  u"style",   u"sub",        u"summary",
    u"sup",        u"svg",      u"table",   u"tbody",   u"td",      u"tfoot",      u"th",
    u"thead",      u"time",     u"title",   u"tr",      u"tt",      u"u",          u"ul",
    u"var",        u"video",    u"wbr",
});

// Elements that stand inside a line of text; all others part words.
constexpr std::array InlineElements = std::to_array<std::u16string_view>({
    u"a",      u"abbr", u"acronym", u"b",    u"bdi",  u"bdo",   u"big",  u"cite",
    u"code",   u"del",  u"dfn",     u"em",   u"font", u"i",     u"ins",  u"kbd",
    u"mark",   u"nobr", u"q",       u"s",    u"samp", u"small", u"span", u"strike",
    u"strong", u"sub",  u"sup",     u"time", u"tt",   u"u",     u"var",  u"wbr",
});

template <std::size_t Size>
bool contains(const std::array<std::u16string_view, Size>& words, QStringView word) {
  return std::binary_search(words.begin(), words.end(),
                            std::u16string_view(reinterpret_cast<const char16_t*>(word.utf16()),
                                                static_cast<std::size_t>(word.size())));
}

// Leaves markup out, in one pass over the text.
class MarkupStripper {
 public:
  explicit MarkupStripper(QStringView text) : text_(text), lastEnd_(text.lastIndexOf(u'>')) {}

  QString stripped() {
    result_.reserve(text_.size());
    for (qsizetype i = 0; i < text_.size();)
      i = text_[i] == u'<' && i < lastEnd_ ? readTag(i) : copy(i);
    return std::move(result_);
  }

 private:
  qsizetype copy(qsizetype i) {
    result_ += text_[i];
    return i + 1;
  }

  // What follows the tag at `start`, or the character after it where it is no tag.
  qsizetype readTag(qsizetype start) {
    if (text_.mid(start, 4) == "<!--"_L1)
      return after(u"-->"_s, start + 4);
    qsizetype i = start + 1;
    const bool isEnd = text_[i] == u'/';
    if (isEnd)
      ++i;
    QString name;
    for (; i < text_.size() && name.size() <= LongestTagName && text_[i].isLetterOrNumber(); ++i)
      name += text_[i].toLower();
    if (i >= text_.size() || !contains(Elements, name) || !isAfterName(text_[i]))
      return copy(start);
    i = endOfTag(i);
    if (!contains(InlineElements, name))
      result_ += u' ';
    if (!isEnd && (name == "script"_L1 || name == "style"_L1))
      return after(u"</"_s + name, i);
    return i;
  }

  static bool isAfterName(QChar c) { return c.isSpace() || c == u'>' || c == u'/'; }

  // Behind the next `mark`; without one what follows is left out.
  qsizetype after(const QString& mark, qsizetype from) const {
    const qsizetype found = text_.indexOf(mark, from, Qt::CaseInsensitive);
    const qsizetype end = found < 0 ? -1 : text_.indexOf(u'>', found);
    return end < 0 ? text_.size() : end + 1;
  }

  // Behind the ">" that ends the tag, which may stand in a quoted value before that.
  qsizetype endOfTag(qsizetype from) {
    QChar quote;
    for (qsizetype i = from; i < text_.size() && quotesClose_; ++i) {
      const QChar c = text_[i];
      if (!quote.isNull()) {
        if (c == quote)
          quote = {};
      } else if (c == u'"' || c == u'\'') {
        quote = c;
      } else if (c == u'>') {
        return i + 1;
      }
    }
    // From here on quotes are no use, and looking for their ends again would take squared time.
    quotesClose_ = false;
    const qsizetype end = text_.indexOf(u'>', from);
    return end < 0 ? text_.size() : end + 1;
  }

  QStringView text_;
  qsizetype lastEnd_;
  bool quotesClose_ = true;
  QString result_;
};

QString decoded(QStringView text) {
  QString result;
  result.reserve(text.size());
  qsizetype copied = 0;
  for (qsizetype i = text.indexOf(u'&'); i >= 0; i = text.indexOf(u'&', i + 1)) {
    qsizetype end = i + 1;
    while (end < text.size() && end - i <= LongestReference &&
           (text[end].isLetterOrNumber() || text[end] == u'#'))
      ++end;
    if (end == text.size() || text[end] != u';')
      continue;
    const QByteArray name = text.sliced(i + 1, end - i - 1).toUtf8();
    if (const std::optional<char32_t> character = characterOfReference(name)) {
      result += text.sliced(copied, i - copied);
      result += QStringView(QChar::fromUcs4(*character));
      copied = end + 1;
    }
  }
  result += text.sliced(copied);
  return result;
}

// Whether what entities hid is markup: a text about "<b>" alone is not.
bool showsMarkup(QStringView text) {
  return text.contains("</"_L1) || text.contains("<br"_L1, Qt::CaseInsensitive) ||
         text.contains("<img "_L1, Qt::CaseInsensitive);
}

QString withoutMarkup(QStringView text) {
  QString result = text.contains(u'<') ? MarkupStripper(text).stripped() : text.toString();
  if (!result.contains(u'&'))
    return result;
  result = decoded(result);
  // Escaped twice, as many feeds have it.
  if (showsMarkup(result))
    result = MarkupStripper(result).stripped();
  return result.contains(u'&') ? decoded(result) : result;
}

// Control characters, those that turn the direction of text, and those that show nothing.
bool isDropped(char32_t c) {
  return c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0xAD || (c >= 0x202A && c <= 0x202E) ||
         (c >= 0x2066 && c <= 0x206F) || c == 0xFEFF || (c >= 0xFFF9 && c <= 0xFFFB) ||
         (c >= 0xFDD0 && c <= 0xFDEF) || (c & 0xFFFE) == 0xFFFE;
}

// Characters that stay as they are, as far as that is quickly told.
bool isPlain(QChar c) {
  return (c > u' ' && c < u'\x7F') || (c > u'\x00AD' && c < u'\x1680');
}

QString onOneLine(QStringView text) {
  QString result;
  result.reserve(text.size());
  bool spaceIsDue = false;
  const auto append = [&](QStringView character) {
    if (spaceIsDue && !result.isEmpty())
      result += u' ';
    spaceIsDue = false;
    result += character;
  };
  for (qsizetype i = 0; i < text.size(); ++i) {
    qsizetype end = i;
    while (end < text.size() && isPlain(text[end]))
      ++end;
    if (end > i) {
      append(text.sliced(i, end - i));
      i = end - 1;
      continue;
    }
    const QChar unit = text[i];
    const bool isPair =
        unit.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
    char32_t c = unit.unicode();
    if (isPair)
      c = QChar::surrogateToUcs4(text[i], text[i + 1]);
    else if (unit.isSurrogate())
      c = QChar::ReplacementCharacter;
    if (QChar::isSpace(c))
      spaceIsDue = true;
    else if (!isDropped(c))
      append(QChar::fromUcs4(c));
    i += isPair ? 1 : 0;
  }
  return result;
}

// Where to cut `text` so that at most `longest` code units stay and no character is torn.
qsizetype boundary(const QString& text, qsizetype longest) {
  constexpr qsizetype Context = 32;
  const QString start = text.left(longest + Context);
  QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, start);
  finder.setPosition(longest);
  qsizetype end = finder.isAtBoundary() ? longest : finder.toPreviousBoundary();
  // One character may be longer than all that is shown.
  if (end <= 0)
    end = text[longest - 1].isHighSurrogate() ? longest - 1 : longest;
  return end;
}

QString withEllipsis(QStringView text) {
  return text.trimmed() + u'…';
}
} // namespace

QString titleText(QStringView text, FeedTextKind kind, qsizetype longest) {
  const bool hasMarkup = kind == FeedTextKind::Html && (text.contains(u'<') || text.contains(u'&'));
  const QString line = hasMarkup ? onOneLine(withoutMarkup(text)) : onOneLine(text);
  if (line.size() <= longest)
    return line;
  return withEllipsis(QStringView(line).left(boundary(line, longest - 1)));
}

QString firstWords(QStringView text, FeedTextKind kind) {
  const QString line = titleText(text, kind);
  if (line.size() <= LongestFirstWords)
    return line;
  const QStringView start = QStringView(line).left(boundary(line, LongestFirstWords - 1));
  const qsizetype space = start.lastIndexOf(u' ');
  return withEllipsis(space > LongestFirstWords / 2 ? start.left(space) : start);
}

bool partsWords(QStringView elementName) {
  return contains(Elements, elementName) && !contains(InlineElements, elementName);
}

QUrl webAddress(const QUrl& base, QStringView text) {
  text = text.trimmed();
  if (text.isEmpty() || text.size() > LongestAddress)
    return {};
  const QUrl relative(text.toString());
  if (!relative.isValid() || relative.isEmpty())
    return {};
  const QUrl url = relative.isRelative() ? base.resolved(relative) : relative;
  const bool isWeb = url.scheme() == "http"_L1 || url.scheme() == "https"_L1;
  return isWeb && url.isValid() && !url.host().isEmpty() ? url : QUrl();
}

} // namespace zq::app
