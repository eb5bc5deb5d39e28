// "zqticker appearance": files of the look of buttons, the JSON from which people make them, and
// the pictures in which they look at them.
#pragma once

#include <QtCore/QStringList>

namespace zq::app {

// Prints the appearance in a file as JSON. CommandFailure where that fails. Needs a
// QCoreApplication, as makeAppearanceCommand does.
int showAppearanceCommand(const QStringList& arguments);

// Writes the file of the appearance that a JSON file describes.
int makeAppearanceCommand(const QStringList& arguments);

// Writes the contact sheet of the appearance in a file. Needs a QApplication.
int previewAppearanceCommand(const QStringList& arguments);

} // namespace zq::app
