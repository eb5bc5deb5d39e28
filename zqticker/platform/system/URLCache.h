// The cache of responses to http and https requests, kept on disk.
#pragma once

#include "zqticker/zqticker_export.h"

#include <QtCore/QString>

#include <memory>

namespace zq::platform {

class HTTPCacheStore;

// One cache for the process. It keeps nothing until the host gives it a folder.
//
// A response is kept by HTTP's rules for a cache of one user. Where the server states no lifetime,
// a tenth of the time since Last-Modified counts, at most a minute. Responses are kept with their
// bodies decoded, under the address without its fragment. A body of more than an eighth of the
// store is not kept, nor is one that arrived incomplete. Redirects are kept without their bodies;
// Set-Cookie is left out. An address that holds a user name or a password is neither looked up nor
// kept, so that no credentials get onto the disk.
//
// A damaged file in the folder is a missing one. A folder that cannot be written is logged once
// (zqticker.net), and loading goes on.
//
// Thread: any.
class ZQTICKER_EXPORT URLCache {
 public:
  static URLCache& sharedURLCache();

  URLCache(const URLCache&) = delete;
  URLCache& operator=(const URLCache&) = delete;

  // Keeps responses in files below `directory`, which is made when it is missing and may be used
  // by other processes at the same time. When the files of this process exceed `maximumBytes`,
  // the oldest ones are deleted. An empty directory, the default, or a size that is not positive
  // keeps nothing; files that are there stay. Loads under way go on with the folder before.
  void setStore(const QString& directory, qint64 maximumBytes);

  // Deletes everything that the store keeps, whoever wrote it.
  void removeAllCachedResponses();

 private:
  struct State;

  URLCache();
  ~URLCache();
  friend std::shared_ptr<HTTPCacheStore> sharedHTTPCacheStore();

  std::unique_ptr<State> state_;
};

} // namespace zq::platform
