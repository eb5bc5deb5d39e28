#include "zqticker/platform/controls/drag_operations_p.h"

namespace zq::platform {

DragOperationMask operationsOf(Qt::DropActions actions) {
  DragOperationMask operations = DragOperationNone;
  if (actions & Qt::CopyAction)
    operations |= DragOperationCopy;
  if (actions & Qt::LinkAction)
    operations |= DragOperationLink;
  if (actions & Qt::MoveAction)
    operations |= DragOperationMove;
  return operations == DragOperationNone ? operations : operations | DragOperationGeneric;
}

// The actions by which `operations` may be done.
static Qt::DropActions actionsOf(DragOperationMask operations) {
  // Which action these are is known to the source, or to nobody but the two.
  if (operations & (DragOperationGeneric | DragOperationPrivate))
    return Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;
  Qt::DropActions actions;
  actions.setFlag(Qt::CopyAction, operations & DragOperationCopy);
  actions.setFlag(Qt::LinkAction, operations & DragOperationLink);
  // A source deletes what was moved.
  actions.setFlag(Qt::MoveAction, operations & (DragOperationMove | DragOperationDelete));
  return actions;
}

Qt::DropAction actionFor(DragOperationMask operations, Qt::DropActions possible,
                         Qt::DropAction proposed) {
  const Qt::DropActions allowed = actionsOf(operations) & possible;
  for (const Qt::DropAction action : {proposed, Qt::CopyAction, Qt::MoveAction, Qt::LinkAction})
    if (action != Qt::IgnoreAction && allowed.testFlag(action))
      return action;
  return Qt::IgnoreAction;
}

} // namespace zq::platform
