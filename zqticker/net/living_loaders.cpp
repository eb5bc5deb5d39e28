#include "zqticker/net/living_loaders_p.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <QtCore/QThread>

#include <mutex>
#include <unordered_set>
#include <vector>

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

// Holds loaders until the event loop destroys it. Those that are released at one level of the event
// loop, before control is back there, share one.
class Holder : public QObject {
 public:
  static void hold(const Ref<ZQURLLoader>& loader) {
    const int level = QThread::currentThread()->loopLevel();
    if (!latest || latest->level_ != level) {
      latest = new Holder(level);
      latest->destroyLater();
    }
    latest->loaders_.push_back(loader);
  }

  ~Holder() override {
    if (latest == this)
      latest = nullptr;
    // The context holds the loader, and the loader its context.
    for (const Ref<ZQURLLoader>& loader : loaders_)
      loader->setContext({});
  }

 private:
  explicit Holder(int level) : level_(level) {}

  void destroyLater() {
    // The event loop destroys what is deleted later only at the level where that was asked for.
    // Outside of any event loop it would wait for one to be started; an event of our own comes with
    // the next events that are processed.
    if (level_ > 0)
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

  static thread_local Holder* latest;

  int level_;
  std::vector<Ref<ZQURLLoader>> loaders_;
};

thread_local Holder* Holder::latest = nullptr;
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
  Holder::hold(loader);
}
