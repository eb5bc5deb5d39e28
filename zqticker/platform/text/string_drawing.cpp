#include "zqticker/platform/text/string_drawing.h"

#include "zqticker/platform/graphics/GraphicsContext.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/platform/text/TextLine_p.h"

#include <algorithm>
#include <array>

namespace zq::platform {

namespace {

struct Entry {
  QString string;
  Attributes attributes;
  std::shared_ptr<const TextLine> line;
};

// About as many strings as a display shows at a time.
constexpr std::size_t capacity = 64;
// Longer strings are not remembered, so that the memory is bounded.
constexpr qsizetype maximumLength = 16384;

// The very same values: fonts and colours are immutable, so that identity is enough.
bool areSame(const Attributes& a, const Attributes& b) {
  if (a.size() != b.size())
    return false;
  for (auto i = a.begin(), j = b.begin(); i != a.end(); ++i, ++j)
    if (i.key() != j.key() || !isSameObject(i.value(), j.value()))
      return false;
  return true;
}

// The layout of `string`, remembered; the most recently used stands first.
std::shared_ptr<const TextLine> lineOf(const QString& string, const Attributes& attributes) {
  // Never freed: layouts must not outlive the application object.
  static auto& entries = *new std::array<Entry, capacity>;
  auto found = std::find_if(entries.begin(), entries.end(), [&](const Entry& entry) {
    return entry.line && entry.string == string && areSame(entry.attributes, attributes);
  });
  if (found == entries.end()) {
    auto line = std::make_shared<TextLine>(
        string, AttributedString::make(string, attributes)->runs(), attributes);
    if (string.size() > maximumLength)
      return line;
    found = entries.end() - 1;
    *found = {string, attributes, std::move(line)};
  }
  std::rotate(entries.begin(), found, found + 1);
  return entries.front().line;
}

} // namespace

QSizeF sizeWithAttributes(const QString& string, const Attributes& attributes) {
  return lineOf(string, attributes)->size();
}

void drawAtPoint(const QString& string, QPointF point, const Attributes& attributes) {
  if (GraphicsContext* context = GraphicsContext::currentContext())
    TextLine::draw(lineOf(string, attributes), *context, point);
}

} // namespace zq::platform
