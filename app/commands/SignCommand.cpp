#include "app/commands/SignCommand.h"

#include "app/commands/failures.h"
#include "app/commands/output_files.h"
#include "app/commands/sign_loading.h"
#include "app/display/SignAction.h"
#include "zqticker/platform/archiving/KeyedArchiver.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/signs/ZQComboTickerSign.h"
#include "zqticker/signs/ZQTextTickerSign.h"

using namespace Qt::StringLiterals;

namespace zq::app {

using namespace platform;

namespace {
constexpr double SystemFontSize = 13;

Attributes styleOf(const SignOptions& options) {
  Attributes style;
  if (options.font)
    style.insert(FontAttributeName, any(findFont(*options.font, SystemFontSize).font));
  if (options.color)
    style.insert(ForegroundColorAttributeName, any(Color::fromQColor(*options.color)));
  return style;
}

Ref<ZQTickerSign> makeSign(const SignOptions& options) {
  const Ref<Image> image =
      options.image ? loadImage(options.image->argument, options.image->file) : nullptr;
  if (!options.text)
    return ZQImageTickerSign::make(image);
  const Attributes style = styleOf(options);
  const QString& text = options.text->text;
  if (!image)
    return ZQTextTickerSign::make(AttributedString::make(text, style));
  return style.isEmpty() ? ZQComboTickerSign::make(text, image)
                         : ZQComboTickerSign::make(any(AttributedString::make(text, style)), image);
}
} // namespace

int signCommand(const QStringList& arguments) {
  const SignOptions options = readSignOptions(arguments);
  const Ref<ZQTickerSign> sign = makeSign(options);
  sign->setLoopCount(options.loopCount.value_or(0));
  sign->setLoopDelay(options.loopDelay.value_or(0));
  sign->setContinuousScrolling(options.continuous);
  if (!options.identifier.isEmpty())
    sign->setIdentifier(options.identifier);
  if (!options.action.isEmpty()) {
    sign->setActionType(OpenLocation);
    sign->setActionString(options.action);
  }
  writeOutputFile(u"--output"_s, options.output, KeyedArchiver::archivedDataWithRootObject(sign));
  return Success;
}

} // namespace zq::app
