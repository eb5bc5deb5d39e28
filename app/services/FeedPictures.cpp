#include "app/services/FeedPictures.h"

#include "app/services/BoundedLoad.h"
#include "app/services/picture_decoding.h"
#include "zqticker/platform/graphics/Image.h"

#include <QtCore/QSet>

#include <algorithm>

namespace zq::app {

using namespace platform;

FeedPictures::FeedPictures(QSize room, QObject* parent) : QObject(parent), room_(room) {
  decoder_.setMaxThreadCount(1);
}

FeedPictures::~FeedPictures() {
  decoder_.clear();
  decoder_.waitForDone();
}

void FeedPictures::want(const std::vector<QUrl>& urls) {
  QSet<QUrl> wanted;
  queue_.clear();
  for (const QUrl& url : urls) {
    if (url.isEmpty() || wanted.contains(url))
      continue;
    wanted.insert(url);
    if (!pictures_.contains(url) && !loads_.contains(url))
      queue_.push_back(url);
  }
  pictures_.removeIf([&](const auto& picture) { return !wanted.contains(picture.key()); });
  std::erase_if(loads_, [&](const auto& load) { return !wanted.contains(load.first); });
  startLoads();
}

bool FeedPictures::isAwaited(const QUrl& url) const {
  return loads_.contains(url) || std::find(queue_.begin(), queue_.end(), url) != queue_.end();
}

void FeedPictures::startLoads() {
  while (!queue_.empty() && loads_.size() < MostLoads) {
    const QUrl url = queue_.front();
    queue_.pop_front();
    auto load = std::make_unique<BoundedLoad>(url, MostBytes);
    BoundedLoad* started = load.get();
    loads_.emplace(url, Load{nextNumber_++, std::move(load)});
    connect(started, &BoundedLoad::ended, this,
            [this, url](const QString& errorText) { loaded(url, errorText); });
    started->start();
  }
}

void FeedPictures::loaded(const QUrl& url, const QString& errorText) {
  const Load& load = loads_.at(url);
  if (!errorText.isEmpty())
    return settle(url, QImage());
  decoder_.start([this, url, number = load.number, data = load.load->data(), room = room_] {
    const QImage image = decodePicture(data, room);
    QMetaObject::invokeMethod(
        this,
        [this, url, number, image] {
          const auto found = loads_.find(url);
          if (found != loads_.end() && found->second.number == number)
            settle(url, image);
        },
        Qt::QueuedConnection);
  });
}

void FeedPictures::settle(const QUrl& url, const QImage& image) {
  // A load that fails is still in the middle of its signal.
  BoundedLoad* load = loads_.at(url).load.release();
  load->setParent(this);
  load->deleteLater();
  loads_.erase(url);
  pictures_.insert(url, Image::fromQImage(image));
  startLoads();
  Q_EMIT changed();
}

} // namespace zq::app
