// Feeds from bytes, as they arrive: RSS 0.9x, 1.0 and 2.0, Atom 1.0, JSON Feed 1.
#pragma once

#include "app/services/Feed.h"

#include <QtCore/QByteArrayView>
#include <QtCore/QStringList>

#include <memory>

namespace zq::app {

struct FeedLimits {
  // Of the document; more ends it with an error.
  qint64 bytes = 16 << 20;
  // Of elements, objects and lists in each other; more ends the document with an error.
  int depth = 200;
  // Items that are kept. With them the document counts as read: what follows is not looked at.
  std::size_t items = 1000;
};

// Reads one document, in pieces of any size: how it is cut makes no difference to the result. What
// it is, is decided by its first bytes; its encoding by a byte-order mark, else the content type,
// else its own declaration, else it is UTF-8. Bytes that are not in the encoding become U+FFFD.
//
// Nothing is loaded, no entity but those of HTML is known, and memory is bounded by the limits.
//
// Thread: any, one at a time.
class FeedParser {
 public:
  // `base` is the address of the document, against which its links are resolved. `contentType` is
  // the media type as a server states it, with its charset: "text/xml; charset=koi8-r".
  explicit FeedParser(QUrl base, QString contentType = {}, FeedLimits limits = {});
  ~FeedParser();
  FeedParser(const FeedParser&) = delete;
  FeedParser& operator=(const FeedParser&) = delete;

  // Reads on. False once the document has failed; what follows then is not looked at.
  bool addData(QByteArrayView data);
  // The end of the document. False where it has failed, also because it ends early.
  bool finish();

  // What has been read so far. After a failure the items that were complete before it, so that a
  // document that was cut off still shows what came.
  const Feed& feed() const;
  // Empty, or what is wrong in one line: "not a feed: an HTML page", "XML error in line 3: …".
  const QString& errorText() const;
  // Whether the document was read to its end, or as far as the limit of items lets it.
  bool isComplete() const;
  // Whether items were left out because of the limit, as far as it was looked.
  bool hasFurtherItems() const;
  // What is odd about the document without keeping it from being read, a line each.
  QStringList warnings() const;

 private:
  class Document;
  std::unique_ptr<Document> document_;
};

} // namespace zq::app
