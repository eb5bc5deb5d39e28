// Operations of a drag and the toolkit's actions.
#pragma once

#include "zqticker/platform/controls/DraggingInfo.h"

#include <QtCore/Qt>

namespace zq::platform {

// What a source allows that offers `actions`.
DragOperationMask operationsOf(Qt::DropActions actions);

// The one action that stands for `operations`, among those that are possible: the one that was
// proposed if it will do, else copying before moving before linking. IgnoreAction where none will
// do.
Qt::DropAction actionFor(DragOperationMask operations, Qt::DropActions possible,
                         Qt::DropAction proposed);

} // namespace zq::platform
