// The look of buttons as JSON that people write: an object with a key for each attribute.
#pragma once

#include "app/commands/OutputValue.h"
#include "zqticker/platform/objects/Object.h"

#include <QtCore/QByteArray>

class ZQRollOverButtonAppearance;

namespace zq::app {

// All attributes in their order. Enumeration numbers beyond 2^63 - 1, for which readers of JSON
// have no integers, are texts of their digits.
OutputValue jsonOfAppearance(const ZQRollOverButtonAppearance& appearance);

// The appearance that `json` describes; attributes that it leaves out stay as in a new one.
// JsonError naming the key and what was expected.
platform::Ref<ZQRollOverButtonAppearance> appearanceOfJson(const QByteArray& json);

} // namespace zq::app
