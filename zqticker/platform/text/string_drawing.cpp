#include "zqticker/platform/text/string_drawing.h"

#include "zqticker/platform/graphics/GraphicsContext.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/platform/text/LineCache_p.h"
#include "zqticker/platform/text/TextLine_p.h"

#include <algorithm>
#include <list>

namespace zq::platform {

namespace {

struct Entry {
  QString string;
  Attributes attributes;
  std::shared_ptr<TextLine> line;
};

// About as many strings as a display shows at a time.
constexpr std::size_t capacity = 64;
// What they take together at most, the last one excepted, so that the memory is bounded.
constexpr qsizetype maximumLength = qsizetype(1) << 21;

// The very same values: fonts and colours are immutable, so that identity is enough.
bool areSame(const Attributes& a, const Attributes& b) {
  if (a.size() != b.size())
    return false;
  for (auto i = a.begin(), j = b.begin(); i != a.end(); ++i, ++j)
    if (i.key() != j.key() || !isSameObject(i.value(), j.value()))
      return false;
  return true;
}

// Drops what was used longest ago. What is being measured stays, or it would never be done.
void makeRoom(std::list<Entry>& entries) {
  qsizetype length = 0;
  for (const Entry& entry : entries)
    length += entry.string.size();
  while (entries.size() > 1 && (entries.size() > capacity || length > maximumLength)) {
    auto last = std::prev(entries.end());
    while (last != std::next(entries.begin()) && last->line->isMeasuring())
      --last;
    length -= last->string.size();
    entries.erase(last);
  }
}

// The layout of `string`, remembered, though it may not be measured yet; the most recently used
// stands first.
const std::shared_ptr<TextLine>& beginLine(const QString& string, const Attributes& attributes) {
  // Never freed: layouts must not outlive the application object.
  static auto& entries = *new std::list<Entry>;
  const auto found = std::find_if(entries.begin(), entries.end(), [&](const Entry& entry) {
    return entry.string == string && areSame(entry.attributes, attributes);
  });
  if (found == entries.end()) {
    entries.push_front(
        {string, attributes,
         std::make_shared<TextLine>(string, AttributedString::make(string, attributes)->runs(),
                                    attributes, TextLine::Measuring::InSteps)});
    makeRoom(entries);
  } else {
    entries.splice(entries.begin(), entries, found);
  }
  return entries.front().line;
}

std::shared_ptr<const TextLine> lineOf(const QString& string, const Attributes& attributes) {
  const std::shared_ptr<TextLine> line = beginLine(string, attributes);
  line->measureUntil(QDeadlineTimer(QDeadlineTimer::Forever));
  LineCache::shared().use(line);
  return line;
}

} // namespace

QSizeF sizeWithAttributes(const QString& string, const Attributes& attributes) {
  return lineOf(string, attributes)->size();
}

bool measureUntil(const QString& string, const Attributes& attributes,
                  const QDeadlineTimer& deadline) {
  return beginLine(string, attributes)->measureUntil(deadline);
}

void drawAtPoint(const QString& string, QPointF point, const Attributes& attributes) {
  if (GraphicsContext* context = GraphicsContext::currentContext())
    TextLine::draw(lineOf(string, attributes), *context, point);
}

} // namespace zq::platform
