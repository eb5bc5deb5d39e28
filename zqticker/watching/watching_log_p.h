// Where watchers log.
#pragma once

#include <QtCore/QLoggingCategory>

// The category "zqticker.watching", never destroyed: threads may outlive the program's main
// function.
const QLoggingCategory& watchingLog();
