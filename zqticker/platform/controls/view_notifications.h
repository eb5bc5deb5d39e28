// Notifications of views and windows, posted to NotificationCenter::defaultCenter.
#pragma once

#include "zqticker/platform/objects/Object.h"
#include "zqticker/zqticker_export.h"

#include <QtCore/QLatin1StringView>

class QWidget;

namespace zq::platform {

// Position or size of a view has changed. About the view's viewObject.
inline constexpr QLatin1StringView ViewFrameDidChangeNotification{
    "NSViewFrameDidChangeNotification"};

// The size of a window has changed. About its windowObject; posted for windows that have been asked
// for theirs.
inline constexpr QLatin1StringView WindowDidResizeNotification{"NSWindowDidResizeNotification"};

// What stands for the window of `widget` in notifications: the same as long as the window lives.
// Null for null.
//
// Thread: main.
ZQTICKER_EXPORT Ref<Object> windowObject(QWidget* widget);

} // namespace zq::platform
