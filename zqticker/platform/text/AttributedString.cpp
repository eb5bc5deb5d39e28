#include "zqticker/platform/text/AttributedString.h"

#include "zqticker/platform/archiving/ClassRegistry.h"
#include "zqticker/platform/graphics/FontFace_p.h"
#include "zqticker/platform/graphics/GraphicsContext.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/text/LineHolder_p.h"
#include "zqticker/platform/text/TextAttachment.h"
#include "zqticker/platform/text/TextLine_p.h"

#include <algorithm>
#include <typeinfo>

using namespace Qt::StringLiterals;

namespace zq::platform {

ZQ_REGISTER_VALUE_CLASS(AttributedString);

AttributedString::AttributedString() = default;
AttributedString::~AttributedString() = default;

Ref<AttributedString> AttributedString::make(const QString& string, const Attributes& attributes) {
  auto text = std::make_shared<AttributedString>();
  text->string_ = string;
  if (!string.isEmpty())
    text->runs_.push_back({{0, string.size()}, attributes});
  return text;
}

Ref<AttributedString>
AttributedString::attributedStringWithAttachment(const Ref<TextAttachment>& attachment) {
  Attributes attributes;
  if (attachment)
    attributes.insert(AttachmentAttributeName, any(attachment));
  return make(QString(QChar(TextAttachment::AttachmentCharacter)), attributes);
}

void AttributedString::checkRange(Range range) const {
  if (range.location < 0 || range.length < 0 || range.location > length() ||
      range.length > length() - range.location)
    throw RangeException(u"range {%1, %2} out of bounds; string length %3"_s.arg(range.location)
                             .arg(range.length)
                             .arg(length()));
}

const Attributes& AttributedString::attributesAtIndex(qsizetype index,
                                                      Range* effectiveRange) const {
  if (index < 0 || index >= length())
    throw RangeException(u"index %1 out of bounds; string length %2"_s.arg(index).arg(length()));
  const auto run = std::upper_bound(
      runs_.begin(), runs_.end(), index,
      [](qsizetype position, const Run& candidate) { return position < candidate.range.end(); });
  if (effectiveRange)
    *effectiveRange = run->range;
  return run->attributes;
}

Any AttributedString::attributeAtIndex(const QString& name, qsizetype index) const {
  return attributesAtIndex(index).value(name);
}

Ref<AttributedString> AttributedString::attributedSubstringFromRange(Range range) const {
  checkRange(range);
  auto part = std::make_shared<AttributedString>();
  part->string_ = string_.mid(range.location, range.length);
  // Only the runs inside are looked at: a long text is cut into many parts at no more than its own
  // length's cost.
  auto run = std::partition_point(runs_.begin(), runs_.end(), [&](const Run& candidate) {
    return candidate.range.end() <= range.location;
  });
  for (; run != runs_.end() && run->range.location < range.end(); ++run) {
    const qsizetype from = std::max(run->range.location, range.location);
    const qsizetype to = std::min(run->range.end(), range.end());
    part->runs_.push_back({{from - range.location, to - from}, run->attributes});
  }
  return part;
}

LineHolder& AttributedString::holder() const {
  if (!line_)
    line_ = std::make_shared<LineHolder>();
  return *line_;
}

std::shared_ptr<const TextLine> AttributedString::line() const {
  return holder().line(string_, runs_);
}

QSizeF AttributedString::size() const {
  return holder().size(string_, runs_);
}

bool AttributedString::measureUntil(const QDeadlineTimer& deadline) const {
  return holder().measureUntil(string_, runs_, deadline);
}

bool AttributedString::isSettled() const {
  FontFace::requireApplication();
  return typeid(*this) == typeid(AttributedString) &&
         std::none_of(runs_.begin(), runs_.end(), [](const Run& run) {
           return run.attributes.contains(AttachmentAttributeName);
         });
}

// This text, or a copy where it may change or ends without its holders.
Ref<const AttributedString> AttributedString::asItIs() const {
  if (typeid(*this) == typeid(AttributedString))
    if (const auto self = weak_from_this().lock())
      return std::static_pointer_cast<const AttributedString>(self);
  auto text = std::make_shared<AttributedString>();
  text->string_ = string_;
  text->runs_ = runs_;
  text->line_ = line_;
  return text;
}

void AttributedString::drawAtPoint(QPointF point) const {
  GraphicsContext* context = GraphicsContext::currentContext();
  if (!context)
    return;
  if (!context->isRecording())
    return TextLine::draw(line(), *context, point);
  // Pictures are taken now.
  holder().size(string_, runs_);
  context->perform([text = asItIs(), point](GraphicsContext& target) {
    TextLine::draw(text->line(), target, point);
  });
}

QString AttributedString::description() const {
  return string_;
}

bool AttributedString::isEqual(const Object& other) const {
  const auto* text = dynamic_cast<const AttributedString*>(&other);
  if (!text || text->string_ != string_)
    return false;
  // Runs may be cut differently: compare every stretch that is within one run of both.
  auto a = runs_.begin();
  auto b = text->runs_.begin();
  while (a != runs_.end() && b != text->runs_.end()) {
    if (!isEqualValue(a->attributes, b->attributes))
      return false;
    const qsizetype end = std::min(a->range.end(), b->range.end());
    if (a->range.end() == end)
      ++a;
    if (b->range.end() == end)
      ++b;
  }
  return true;
}

Ref<Object> AttributedString::copy() {
  auto text = std::make_shared<AttributedString>();
  text->string_ = string_;
  text->runs_ = runs_;
  text->line_ = line_;
  return text;
}

Ref<MutableAttributedString> AttributedString::mutableCopy() const {
  auto text = std::make_shared<MutableAttributedString>();
  text->replaceCharactersInRange({0, 0}, *this);
  return text;
}

} // namespace zq::platform
