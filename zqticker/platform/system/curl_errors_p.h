// What a failure of libcurl means.
#pragma once

#include <QtCore/QString>
#include <QtCore/QUrl>

#include <curl/curl.h>

#include <utility>

namespace zq::platform {

struct CurlFailure {
  CURL* handle;
  CURLcode result;
  // What curl wrote of it; may be empty.
  QString text;
  QUrl url;
  bool hasResponse;
};

// The code (a URLError) and one line for people, which names the host or the limit.
std::pair<int, QString> describeFailure(const CurlFailure& failure);

} // namespace zq::platform
