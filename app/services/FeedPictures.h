// The pictures of the items of feeds.
#pragma once

#include "zqticker/platform/objects/Object.h"

#include <QtCore/QHash>
#include <QtCore/QObject>
#include <QtCore/QSize>
#include <QtCore/QThreadPool>
#include <QtCore/QUrl>
#include <QtGui/QImage>

#include <deque>
#include <memory>
#include <unordered_map>
#include <vector>

namespace zq::platform {
class Image;
} // namespace zq::platform

namespace zq::app {

class BoundedLoad;

// Loads pictures, a few at a time and no larger than they may be, decodes them on a thread of its
// own, and keeps them small and as long as they are wanted. One that cannot be had is not asked for
// again while it is wanted, and nothing is said about it.
//
// Thread: main.
class FeedPictures : public QObject {
  Q_OBJECT

 public:
  static constexpr std::size_t MostLoads = 4;
  static constexpr qint64 MostBytes = 8 << 20;

  // Pictures are scaled down to `room`, in pixels.
  explicit FeedPictures(QSize room, QObject* parent = nullptr);
  ~FeedPictures() override;

  // Loads those of `urls` that are new, the first ones first, and forgets all others. Empty
  // addresses are passed over.
  void want(const std::vector<QUrl>& urls);

  // Whether the picture may still come.
  bool isAwaited(const QUrl& url) const;
  bool isAwaitingAny() const { return !queue_.empty() || !loads_.empty(); }
  // Null for a picture that is not there. The very same object as long as it is wanted.
  platform::Ref<platform::Image> picture(const QUrl& url) const { return pictures_.value(url); }

  // A picture is there now, or will not come.
  Q_SIGNAL void changed();

 private:
  struct HashOfUrl {
    std::size_t operator()(const QUrl& url) const { return qHash(url); }
  };
  struct Load {
    std::uint64_t number = 0; // never used twice: what is decoded late is told apart
    std::unique_ptr<BoundedLoad> load;
  };

  void startLoads();
  void loaded(const QUrl& url, const QString& errorText);
  void settle(const QUrl& url, const QImage& image);

  QSize room_;
  std::deque<QUrl> queue_;
  std::unordered_map<QUrl, Load, HashOfUrl> loads_;      // loading and decoding
  QHash<QUrl, platform::Ref<platform::Image>> pictures_; // null for those that failed
  std::uint64_t nextNumber_ = 1;
  QThreadPool decoder_;
};

} // namespace zq::app
