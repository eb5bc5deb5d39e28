#include "zqticker/platform/system/http_field_lists_p.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zq::platform {

bool isHTTPFieldName(QStringView name, QLatin1StringView other) {
  return name.compare(other, Qt::CaseInsensitive) == 0;
}

QList<QStringView> httpListElements(QStringView value) {
  QList<QStringView> elements;
  const auto append = [&](qsizetype start, qsizetype end) {
    const QStringView element = value.sliced(start, end - start).trimmed();
    if (!element.isEmpty())
      elements.append(element);
  };
  qsizetype start = 0;
  bool quoted = false;
  for (qsizetype i = 0; i < value.size(); ++i) {
    if (quoted && value[i] == u'\\')
      ++i;
    else if (value[i] == u'"')
      quoted = !quoted;
    else if (value[i] == u',' && !quoted) {
      append(start, i);
      start = i + 1;
    }
  }
  append(start, value.size());
  return elements;
}

HTTPHeaderFields withoutHTTPFields(const HTTPHeaderFields& fields,
                                   std::initializer_list<QLatin1StringView> names) {
  HTTPHeaderFields kept;
  std::copy_if(fields.begin(), fields.end(), std::back_inserter(kept), [&](const auto& field) {
    return std::none_of(names.begin(), names.end(),
                        [&](QLatin1StringView name) { return isHTTPFieldName(field.first, name); });
  });
  return kept;
}

} // namespace zq::platform
