// The domain and the codes of failures to load a URL.
#pragma once

#include "zqticker/zqticker_export.h"

#include <QtCore/QString>

namespace zq::platform {

// The domain of every Error with a code from URLError: "NSURLErrorDomain".
ZQTICKER_EXPORT extern const QString URLErrorDomain;

enum URLError {
  Unknown = -1,
  Cancelled = -999,
  // The address cannot be used: no host, or malformed for its scheme.
  BadURL = -1000,
  // Nothing was heard for as long as the request allows.
  TimedOut = -1001,
  // A scheme other than http, https, file and data.
  UnsupportedURL = -1002,
  CannotFindHost = -1003,
  CannotConnectToHost = -1004,
  // The connection ended before the body did.
  NetworkConnectionLost = -1005,
  // More redirects in a row than allowed, or a loop of them.
  HTTPTooManyRedirects = -1007,
  ResourceUnavailable = -1008,
  // An answer that is not HTTP, or one whose header is too large.
  BadServerResponse = -1011,
  // The content encoding of the body is broken.
  CannotDecodeContentData = -1016,
  FileDoesNotExist = -1100,
  FileIsDirectory = -1101,
  NoPermissionsToReadFile = -1102,
  // The body, decoded, is larger than the limit of the process.
  DataLengthExceedsMaximum = -1103,
  SecureConnectionFailed = -1200,
  ServerCertificateUntrusted = -1202,
  // Asked for from the cache only, and not there.
  CannotLoadFromNetwork = -2000,
  CannotOpenFile = -3001,
};

} // namespace zq::platform
