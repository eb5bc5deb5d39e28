#include "zqticker/platform/text/ParagraphStyle.h"

#include "zqticker/platform/archiving/ClassRegistry.h"
#include "zqticker/platform/archiving/Coder.h"
#include "zqticker/platform/objects/Exception.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zq::platform {

ZQ_REGISTER_VALUE_CLASS(TextTab);
ZQ_REGISTER_VALUE_CLASS(ParagraphStyle);
ZQ_REGISTER_VALUE_CLASS(MutableParagraphStyle);

namespace {

constexpr QLatin1StringView LocationKey{"NSLocation"};
constexpr QLatin1StringView TabAlignmentKey{"NSTextAlignment"};
constexpr QLatin1StringView TabStopsKey{"NSTabStops"};
constexpr QLatin1StringView AlignmentKey{"NSAlignment"};
constexpr QLatin1StringView LineBreakModeKey{"NSLineBreakMode"};
constexpr QLatin1StringView WritingDirectionKey{"NSWritingDirection"};
constexpr QLatin1StringView AllowsTighteningKey{"NSAllowsTighteningForTruncation"};
constexpr QLatin1StringView TextListsKey{"NSTextLists"};
constexpr QLatin1StringView TextBlocksKey{"NSTextBlocks"};

// The lengths and factors, each absent from an archive when 0.
struct RealKey {
  QLatin1StringView key;
  double ParagraphSettings::*value;
};
const RealKey realKeys[] = {
    {"NSDefaultTabInterval"_L1, &ParagraphSettings::defaultTabInterval},
    {"NSHeadIndent"_L1, &ParagraphSettings::headIndent},
    {"NSFirstLineHeadIndent"_L1, &ParagraphSettings::firstLineHeadIndent},
    {"NSTailIndent"_L1, &ParagraphSettings::tailIndent},
    {"NSParagraphSpacing"_L1, &ParagraphSettings::paragraphSpacing},
    {"NSParagraphSpacingBefore"_L1, &ParagraphSettings::paragraphSpacingBefore},
    {"NSLineSpacing"_L1, &ParagraphSettings::lineSpacing},
    {"NSMinLineHeight"_L1, &ParagraphSettings::minimumLineHeight},
    {"NSMaxLineHeight"_L1, &ParagraphSettings::maximumLineHeight},
    {"NSLineHeightMultiple"_L1, &ParagraphSettings::lineHeightMultiple},
    {"NSTighteningFactorForTruncation"_L1, &ParagraphSettings::tighteningFactorForTruncation},
    {"NSHyphenationFactor"_L1, &ParagraphSettings::hyphenationFactor},
};

// In an archive the direction is one more than here: 0 natural, 1 left to right, 2 right to left.
constexpr int WritingDirectionOffset = 1;

} // namespace

TextTab::TextTab() = default;
TextTab::TextTab(double location, int alignment) : location_(location), alignment_(alignment) {}
TextTab::~TextTab() = default;

bool TextTab::isEqual(const Object& other) const {
  const auto* tab = dynamic_cast<const TextTab*>(&other);
  return tab && tab->location_ == location_ && tab->alignment_ == alignment_;
}

Ref<Object> TextTab::copy() {
  return std::make_shared<TextTab>(*this);
}

void TextTab::encodeWithCoder(Coder& coder) {
  coder.encodeDouble(location_, LocationKey);
  if (alignment_ != 0)
    coder.encodeInt(alignment_, TabAlignmentKey);
}

Ref<Object> TextTab::initWithCoder(Coder& coder) {
  location_ = coder.decodeDoubleForKey(LocationKey);
  alignment_ = coder.decodeIntForKey(TabAlignmentKey);
  return shared_from_this();
}

ParagraphStyle::ParagraphStyle() = default;
ParagraphStyle::ParagraphStyle(const ParagraphSettings& settings, TabStops tabStops)
    : settings_(settings), tabStops_(std::move(tabStops)) {}
ParagraphStyle::~ParagraphStyle() = default;

static bool areEqual(const ParagraphStyle::TabStops& a, const ParagraphStyle::TabStops& b) {
  if (!a || !b)
    return a.has_value() == b.has_value();
  return std::equal(a->begin(), a->end(), b->begin(), b->end(),
                    [](const auto& x, const auto& y) { return x->isEqual(*y); });
}

bool ParagraphStyle::isEqual(const Object& other) const {
  const auto* style = dynamic_cast<const ParagraphStyle*>(&other);
  return style && style->settings_ == settings_ && areEqual(style->tabStops_, tabStops_) &&
         isEqualValue(style->textLists_, textLists_) &&
         isEqualValue(style->textBlocks_, textBlocks_);
}

Ref<Object> ParagraphStyle::copy() {
  return std::make_shared<ParagraphStyle>(*this);
}

void ParagraphStyle::encodeWithCoder(Coder& coder) {
  Any stops;
  if (tabStops_) {
    QVariantList list;
    for (const Ref<TextTab>& tab : *tabStops_)
      list.append(any(tab));
    stops = list;
  }
  coder.encodeObject(stops, TabStopsKey);
  coder.encodeInt(int(settings_.alignment), AlignmentKey);
  if (settings_.lineBreakMode != 0)
    coder.encodeInt(settings_.lineBreakMode, LineBreakModeKey);
  for (const RealKey& real : realKeys)
    if (settings_.*real.value != 0)
      coder.encodeDouble(settings_.*real.value, real.key);
  if (settings_.writingDirection != WritingDirection::Natural)
    coder.encodeInt(int(settings_.writingDirection) + WritingDirectionOffset, WritingDirectionKey);
  if (settings_.allowsTighteningForTruncation)
    coder.encodeInt(1, AllowsTighteningKey);
  if (textLists_.isValid())
    coder.encodeObject(textLists_, TextListsKey);
  if (textBlocks_.isValid())
    coder.encodeObject(textBlocks_, TextBlocksKey);
}

// The number under `key`, which must lie between `lowest` and `highest`.
static int decodeNumber(Coder& coder, QLatin1StringView key, int lowest, int highest) {
  const int number = coder.decodeIntForKey(key);
  if (number < lowest || number > highest)
    throw ArchiveException(u"%1 is not between %2 and %3"_s.arg(number).arg(lowest).arg(highest),
                           coder.keyPath(key));
  return number;
}

Ref<Object> ParagraphStyle::initWithCoder(Coder& coder) {
  const Any stops = coder.decodeObjectForKey(TabStopsKey);
  if (stops.isValid()) {
    tabStops_.emplace();
    if (stops.metaType() != QMetaType::fromType<QVariantList>())
      throw ArchiveException(u"tab stops are a list"_s, coder.keyPath(TabStopsKey));
    const QVariantList list = stops.toList();
    for (const Any& element : list) {
      const auto tab = objectOf<TextTab>(element);
      if (!tab)
        throw ArchiveException(u"expected NSTextTab"_s, coder.keyPath(TabStopsKey));
      tabStops_->push_back(tab);
    }
  }
  if (coder.containsValueForKey(AlignmentKey))
    settings_.alignment = TextAlignment(decodeNumber(coder, AlignmentKey, 0, 4));
  settings_.lineBreakMode = coder.decodeIntForKey(LineBreakModeKey);
  for (const RealKey& real : realKeys)
    settings_.*real.value = coder.decodeDoubleForKey(real.key);
  if (coder.containsValueForKey(WritingDirectionKey))
    settings_.writingDirection =
        WritingDirection(decodeNumber(coder, WritingDirectionKey, 0, 2) - WritingDirectionOffset);
  settings_.allowsTighteningForTruncation = coder.decodeIntForKey(AllowsTighteningKey) != 0;
  textLists_ = coder.decodeObjectForKey(TextListsKey);
  textBlocks_ = coder.decodeObjectForKey(TextBlocksKey);
  return shared_from_this();
}

} // namespace zq::platform
