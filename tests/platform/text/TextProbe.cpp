// Measures text in a process of its own, for the tests of what a process can do only once: running
// without a GUI application, and at another screen resolution.
//
//   zqticker-text-probe without-gui   exits 0 when every measurement raises as documented
//   zqticker-text-probe metrics       prints the metrics of a font and the size of a text
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/platform/text/string_drawing.h"

#include <QtGui/QGuiApplication>

#include <cstdio>
#include <cstring>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {

template <class Operation>
bool raises(Operation operation) {
  try {
    operation();
  } catch (const InternalInconsistencyException& exception) {
    return exception.message() == u"text needs a GUI application"_s;
  }
  return false;
}

bool allRaise() {
  const Ref<Font> font = Font::fontWithName(u"Helvetica"_s, 12);
  return raises([&] { font->lineHeight(); }) && raises([] { Font::systemFontOfSize(0); }) &&
         raises([] { Font::isNameKnown(u"Helvetica"_s); }) &&
         raises([] { AttributedString::make(u"text"_s)->size(); }) &&
         raises([] { AttributedString::make(QString())->size(); }) &&
         raises([] { sizeWithAttributes(u"text"_s, {}); });
}

} // namespace

int main(int argc, char** argv) {
  if (argc == 2 && std::strcmp(argv[1], "without-gui") == 0) {
    if (!allRaise())
      return 1;
    const QCoreApplication application(argc, argv);
    return allRaise() ? 0 : 2;
  }
  const QGuiApplication application(argc, argv);
  const Ref<Font> font = Font::fontWithName(u"DejaVu Sans"_s, 12.6);
  const QSizeF size = sizeWithAttributes(u"AVATAR office"_s, {{FontAttributeName, any(font)}});
  std::printf("%.17g %.17g %.17g %.17g %.17g\n", font->ascender(), font->descender(),
              font->xHeight(), size.width(), size.height());
  return 0;
}
