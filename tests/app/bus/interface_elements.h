// What a description of interfaces says about the ticker's.
#pragma once

#include "app/bus/bus_names.h"

#include <QtCore/QStringList>
#include <QtCore/QXmlStreamReader>

namespace zq::app::testing {

// The elements of the ticker's interface in their order, with their depth and attributes.
inline QStringList interfaceElements(const QString& description) {
  QStringList elements;
  QXmlStreamReader reader(description);
  int depth = 0; // within the interface
  while (!reader.atEnd()) {
    reader.readNext();
    if (reader.isStartElement()) {
      const bool isTicker = reader.name() == QLatin1StringView("interface") &&
                            reader.attributes().value(QLatin1StringView("name")) == TickerInterface;
      depth += depth > 0 || isTicker ? 1 : 0;
      if (depth == 0)
        continue;
      QStringList attributes;
      for (const QXmlStreamAttribute& attribute : reader.attributes())
        attributes.append(QString(attribute.name() + u'=' + attribute.value()));
      attributes.sort();
      elements.append(
          QString(QString::number(depth) + u' ' + reader.name() + u' ' + attributes.join(u' ')));
    } else if (reader.isEndElement() && depth > 0) {
      --depth;
    }
  }
  return reader.hasError() ? QStringList(reader.errorString()) : elements;
}

// The names of its methods.
inline QStringList methodsOf(const QString& description) {
  QStringList methods;
  QXmlStreamReader reader(description);
  while (!reader.atEnd())
    if (reader.readNext() == QXmlStreamReader::StartElement &&
        reader.name() == QLatin1StringView("method"))
      methods.append(reader.attributes().value(QLatin1StringView("name")).toString());
  return methods;
}

} // namespace zq::app::testing
