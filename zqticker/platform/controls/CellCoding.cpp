// Archives of cells and action cells.
#include "zqticker/platform/archiving/Coder.h"
#include "zqticker/platform/controls/ActionCell.h"
#include "zqticker/platform/controls/ControlView.h"
#include "zqticker/platform/controls/ViewObject.h"
#include "zqticker/platform/controls/cell_coding_p.h"
#include "zqticker/platform/controls/cell_flags_p.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/text/AttributedString.h"

#include <QtWidgets/QWidget>

#include <limits>

using namespace Qt::StringLiterals;

namespace zq::platform {

static constexpr QLatin1StringView FlagsKey{"NSCellFlags"};
static constexpr QLatin1StringView Flags2Key{"NSCellFlags2"};
static constexpr QLatin1StringView ContentsKey{"NSContents"};
static constexpr QLatin1StringView SupportKey{"NSSupport"};
static constexpr QLatin1StringView ControlSizeKey{"NSControlSize2"};
static constexpr QLatin1StringView TagKey{"NSTag"};
static constexpr QLatin1StringView TargetKey{"NSTarget"};
static constexpr QLatin1StringView ActionKey{"NSAction"};
static constexpr QLatin1StringView ControlViewKey{"NSControlView"};

void encodeFlagWord(Coder& coder, std::uint32_t word, QLatin1StringView key) {
  coder.encodeInt(static_cast<std::int32_t>(word), key);
}

std::uint32_t decodeFlagWord(Coder& coder, QLatin1StringView key) {
  const std::int64_t number = coder.decodeInt64ForKey(key);
  if (number < std::numeric_limits<std::int32_t>::min() ||
      number > std::numeric_limits<std::uint32_t>::max())
    throw ArchiveException(u"%1 is no word of 32 bits"_s.arg(number), coder.keyPath(key));
  return static_cast<std::uint32_t>(number);
}

void Cell::encodeWithCoder(Coder& coder) {
  std::uint32_t flags2 = flags2_;
  cell_flags2::ControlSize.set(flags2, std::uint32_t(controlSize_));
  encodeFlagWord(coder, flags_, FlagsKey);
  encodeFlagWord(coder, flags2, Flags2Key);
  // A number that the word has no room for.
  if (int(cell_flags2::ControlSize.get(flags2)) != int(controlSize_))
    coder.encodeInt(int(controlSize_), ControlSizeKey);
  coder.encodeObject(contents_, ContentsKey);
  if (support_)
    coder.encodeObject(support_, SupportKey);
}

// Values that own no cell in turn: an archive in which they did could never be freed.
static bool isContents(const Any& value) {
  if (const Ref<Object> object = objectOf(value))
    return dynamic_cast<AttributedString*>(object.get()) || dynamic_cast<Image*>(object.get());
  const int type = value.typeId();
  return type != QMetaType::QVariantList && type != QMetaType::QVariantMap;
}

Ref<Object> Cell::initWithCoder(Coder& coder) {
  flags_ = decodeFlagWord(coder, FlagsKey) & ~cell_flags::Meaningless.mask();
  flags2_ = decodeFlagWord(coder, Flags2Key);
  // The two words say it both; a cell that is mixed is not on.
  if (cell_flags2::Mixed.isSet(flags2_))
    cell_flags::On.set(flags_, false);

  controlSize_ = ControlSize(cell_flags2::ControlSize.get(flags2_));
  const std::int32_t size = coder.decodeIntForKey(ControlSizeKey);
  if (coder.containsValueForKey(ControlSizeKey) && (size & 7) == int(controlSize_))
    controlSize_ = ControlSize(size);

  // Checked before they are kept: a cell that kept itself would never be freed.
  const Any contents = coder.decodeObjectForKey(ContentsKey);
  if (!isContents(contents))
    throw ArchiveException(u"a cell shows text, a number, a date or an image"_s,
                           coder.keyPath(ContentsKey));
  contents_ = contents;
  const Any support = coder.decodeObjectForKey(SupportKey);
  if (support.isValid() && !objectOf<Font>(support) && !objectOf<Image>(support))
    throw ArchiveException(u"a font or an image is expected"_s, coder.keyPath(SupportKey));
  support_ = objectOf(support);
  return shared_from_this();
}

// What stands for the target in an archive; null where nothing can.
static Ref<Object> archivedTarget(const Target& target) {
  if (const Ref<Object> object = target.object())
    return object;
  auto* view = target.as<ControlView>();
  return view ? view->viewObject() : nullptr;
}

void ActionCell::encodeWithCoder(Coder& coder) {
  Cell::encodeWithCoder(coder);
  if (tag_ != 0)
    coder.encodeInt64(tag_, TagKey);
  if (const Ref<Object> target = archivedTarget(target_))
    coder.encodeConditionalObject(target, TargetKey);
  if (!action_.name().isEmpty())
    coder.encodeObject(Any(action_.name()), ActionKey);
  if (ControlView* view = controlView())
    coder.encodeConditionalObject(view->viewObject(), ControlViewKey);
}

Ref<Object> ActionCell::initWithCoder(Coder& coder) {
  Cell::initWithCoder(coder);
  tag_ = coder.decodeInt64ForKey(TagKey);
  const Ref<Object> target = objectOf(coder.decodeObjectForKey(TargetKey));
  if (const auto view = std::dynamic_pointer_cast<ViewObject>(target))
    target_ = Target(view->widget());
  else
    target_ = Target(target);
  action_ = Selector(coder.decodeStringForKey(ActionKey).value_or(QString()));
  if (const auto view = coder.decodeObjectOfClass<ViewObject>(ControlViewKey))
    setControlView(view->view());
  return shared_from_this();
}

} // namespace zq::platform
