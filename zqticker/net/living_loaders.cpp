#include "zqticker/net/living_loaders_p.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <QtCore/QThread>

#include <mutex>
#include <unordered_set>

using zq::platform::Ref;

namespace {
struct LivingLoaders {
  std::mutex mutex;
  std::unordered_set<Ref<ZQURLLoader>> loaders;
};

// Never destroyed: what still stands in it when the process ends is not destroyed either.
LivingLoaders& living() {
  static auto* const set = new LivingLoaders;
  return *set;
}

// Holds a loader until the event loop destroys it.
class Holder : public QObject {
 public:
  explicit Holder(const Ref<ZQURLLoader>& loader) : loader_(loader) {}
  ~Holder() override {
    // The context holds the loader, and the loader its context.
    loader_->setContext({});
  }

  void destroyLater() {
    // The event loop destroys what is deleted later only at the level where that was asked for.
    // Outside of any event loop it would wait for one to be started; an event of our own comes with
    // the next events that are processed.
    if (QThread::currentThread()->loopLevel() > 0)
      deleteLater();
    else
      QCoreApplication::postEvent(this, new QEvent(QEvent::User));
  }

  bool event(QEvent* event) override {
    if (event->type() != QEvent::User)
      return QObject::event(event);
    delete this;
    return true;
  }

 private:
  Ref<ZQURLLoader> loader_;
};
} // namespace

void keepLoader(const Ref<ZQURLLoader>& loader) {
  const std::lock_guard lock(living().mutex);
  living().loaders.insert(loader);
}

void releaseLoaderAfterUnitOfWork(const Ref<ZQURLLoader>& loader) {
  {
    const std::lock_guard lock(living().mutex);
    living().loaders.erase(loader);
  }
  (new Holder(loader))->destroyLater();
}
