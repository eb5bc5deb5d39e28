// One reading of a feed.
#pragma once

#include "app/services/BoundedLoad.h"
#include "app/services/Feed.h"
#include "app/services/response_hints.h"

#include <QtCore/QTimer>

#include <memory>
#include <optional>

namespace zq::app {

class FeedParser;

struct FeedAnswer {
  std::optional<Feed> feed;
  QString errorText;   // where there is no feed
  bool isGone = false; // the server says that there never will be one again
  ResponseHints hints;
};

// Loads a feed and parses it as it arrives, a slice at a time between other events, so that nothing
// that moves is held up. Ends early where the document fails.
//
// Thread: main.
class FeedLoad : public QObject {
  Q_OBJECT

 public:
  explicit FeedLoad(const QUrl& url, QObject* parent = nullptr);
  ~FeedLoad() override;

  void start();

  // Once, from the event loop. The object may be destroyed by then.
  Q_SIGNAL void ended(const FeedAnswer& answer);

 private:
  void beginDocument();
  void parseSlice();
  void loadEnded(const QString& errorText);
  void answer(const QString& errorText);

  BoundedLoad load_;
  std::unique_ptr<FeedParser> parser_;
  qsizetype parsed_ = 0;
  bool isLoaded_ = false;
  QString loadError_;
  QTimer slice_;
};

} // namespace zq::app
