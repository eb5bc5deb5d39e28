#include "app/queue/ShowingsBox.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zq::app {

ShowingsBox::ShowingsBox(QWidget* parent) : QSpinBox(parent) {
  setRange(0, MostShowings);
  setSpecialValueText(u"∞"_s);
  setAccelerated(true);
}
ShowingsBox::~ShowingsBox() = default;

void ShowingsBox::setShowings(std::int64_t showings) {
  setValue(showings < 0 ? 0 : static_cast<int>(std::min<std::int64_t>(showings, MostShowings)));
}

} // namespace zq::app
