#include "zqticker/signs/ZQTickerSign.h"

#include "zqticker/platform/archiving/ClassRegistry.h"
#include "zqticker/platform/archiving/PortCoder.h"
#include "zqticker/platform/objects/AssertionHandler.h"
#include "zqticker/signs/keyed_coding_p.h"

#include <typeinfo>

using namespace Qt::StringLiterals;
using namespace zq::platform;

const std::int32_t ZQEndlessLoopCount = -1;

ZQ_REGISTER_VALUE_CLASS(ZQTickerSign);

ZQTickerSign::ZQTickerSign() = default;
ZQTickerSign::ZQTickerSign(const ZQTickerSign&) = default;
ZQTickerSign::~ZQTickerSign() = default;

QSizeF ZQTickerSign::size() const {
  return size_;
}

bool ZQTickerSign::measureUntil(const QDeadlineTimer&) const {
  return true;
}

void ZQTickerSign::drawAtPoint(QPointF) {
  ZQ_ASSERT(false, u"subclasses of ZQTickerSign need to overwrite -drawAtPoint:"_s);
}

Ref<ZQTickerSign> ZQTickerSign::memberwiseCopy() const {
  return Ref<ZQTickerSign>(new ZQTickerSign(*this));
}

Ref<Object> ZQTickerSign::copy() {
  const Ref<ZQTickerSign> duplicate = memberwiseCopy();
  const ZQTickerSign& made = *duplicate;
  ZQ_ASSERT(typeid(made) == typeid(*this),
            u"subclasses of ZQTickerSign need to overwrite memberwiseCopy"_s);
  return duplicate;
}

namespace {
constexpr char ScrollDirectionKey[] = "ZQScrollDirection";
constexpr char ContinuousScrollingKey[] = "ZQContinuousScrolling";
constexpr char LoopCountKey[] = "ZQLoopCount";
constexpr char SizeKey[] = "ZQSize";
constexpr char ActionTypeKey[] = "ZQActionType";
constexpr char ActionStringKey[] = "ZQActionString";
constexpr char LoopDelayKey[] = "ZQLoopDelay";
constexpr char SignIdentifierKey[] = "ZQSignIdentifier";
} // namespace

void ZQTickerSign::encodeWithCoder(Coder& coder) {
  ZQ_REQUIRE_KEYED_CODING(coder);
  coder.encodeInt(scrollDirection_, ScrollDirectionKey);
  coder.encodeBool(continuousScrolling_, ContinuousScrollingKey);
  // The low 32 bits only, and single precision below: the format of every archive in the field.
  coder.encodeInt(static_cast<std::int32_t>(loopCount_), LoopCountKey);
  coder.encodeSize(size_, SizeKey);
  coder.encodeInt(actionType_, ActionTypeKey);
  coder.encodeObject(actionString_, ActionStringKey);
  coder.encodeFloat(static_cast<float>(loopDelay_), LoopDelayKey);
  coder.encodeObject(identifier_, SignIdentifierKey);
}

Ref<Object> ZQTickerSign::initWithCoder(Coder& coder) {
  ZQ_REQUIRE_KEYED_CODING(coder);
  scrollDirection_ = coder.decodeIntForKey(ScrollDirectionKey);
  continuousScrolling_ = coder.decodeBoolForKey(ContinuousScrollingKey);
  loopCount_ = coder.decodeIntForKey(LoopCountKey);
  size_ = coder.decodeSizeForKey(SizeKey);
  actionType_ = coder.decodeIntForKey(ActionTypeKey);
  setActionString(coder.decodeStringForKey(ActionStringKey));
  loopDelay_ = coder.decodeFloatForKey(LoopDelayKey);
  setIdentifier(coder.decodeStringForKey(SignIdentifierKey));
  return shared_from_this();
}

Ref<Object> ZQTickerSign::replacementObjectForPortCoder(PortCoder& coder) {
  return coder.isBycopy() ? shared_from_this() : Object::replacementObjectForPortCoder(coder);
}
