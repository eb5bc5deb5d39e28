// A font's name taken apart.
#pragma once

#include <QtCore/QString>
#include <QtGui/QFont>

namespace zq::platform {

// Family and style of a font name.
struct FontName {
  QString family;
  QFont::Weight weight = QFont::Normal;
  bool italic = false;
  // Percent of the normal width; 100 unless the name says otherwise.
  int stretch = 100;
  // Whether the desktop has the family.
  bool isInstalled = false;

  // Reads a family ("DejaVu Sans"), a family and a style ("DejaVu Sans Bold") or the compact form
  // ("DejaVuSans-BoldOblique"). Of a family that the desktop lacks, what stands before the style
  // is returned. Needs a GUI application.
  static FontName parse(const QString& name);
};

} // namespace zq::platform
