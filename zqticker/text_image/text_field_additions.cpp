#include "zqticker/text_image/text_field_additions.h"

#include "zqticker/platform/controls/TextField.h"
#include "zqticker/platform/controls/TextFieldCell.h"

namespace zq {

// Higher than any field on a screen.
static constexpr double MaximumHeight = 10000.0;

void shrinkHeight(platform::TextField& field) {
  QRectF frame = field.frame();
  frame.setHeight(MaximumHeight);
  frame.setHeight(field.cell()->cellSizeForBounds(frame).height());
  field.setFrame(frame);
}

} // namespace zq
