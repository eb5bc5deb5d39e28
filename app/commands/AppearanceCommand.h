// "zqticker appearance": files of the look of buttons, and the JSON from which people make them.
#pragma once

#include <QtCore/QStringList>

namespace zq::app {

// Prints the appearance in a file as JSON. CommandFailure where that fails. Needs a
// QCoreApplication, as makeAppearanceCommand does.
int showAppearanceCommand(const QStringList& arguments);

// Writes the file of the appearance that a JSON file describes.
int makeAppearanceCommand(const QStringList& arguments);

} // namespace zq::app
