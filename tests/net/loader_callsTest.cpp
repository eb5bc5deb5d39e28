// Who is called when, and how long a loader lives, over real loads.
#include "tests/net/LoadProbe.h"
#include "tests/support/HttpServer.h"
#include "tests/support/LogWatch.h"
#include "tests/support/waiting.h"

#include <gtest/gtest.h>

#include <QtCore/QObject>
#include <QtCore/QThread>

#include <atomic>
#include <set>
#include <thread>

namespace zq::testing {

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {

// Answers "/" in two pieces, the second when the latch lets go.
void routeTwoPieces(HttpServer& server, const HttpLatch& next) {
  server.route("/", [next](const HttpRequest&, HttpReply& reply) {
    reply.beginWithLength(200, 8);
    reply.write("one ");
    reply.wait(next);
    reply.write("more");
  });
}

// A target that is a QObject and is sent messages by name.
class NamedTarget : public QObject {
  Q_OBJECT

 public:
  Q_INVOKABLE void loaded(const QVariant& body, const QVariantMap& arguments) {
    ++calls;
    data = body;
    userInfo = arguments.value(QStringLiteral("userInfo"));
  }

  int calls = 0;
  QVariant data;
  QVariant userInfo;
};

// What a body that arrives in pieces costs: how often its buffer grew, and the most that it was
// larger than twice the bytes in it.
struct BufferGrowth {
  void look(const QByteArray& buffer) {
    capacities.insert(buffer.capacity());
    excess = std::max<qint64>(excess, buffer.capacity() - 2 * buffer.size());
  }
  std::set<qsizetype> capacities;
  qint64 excess = 0;
};

} // namespace

TEST(LoaderContext, HoldsTheLoaderTheResponseAndWhatTheCallerGave) {
  HttpServer server;
  server.route("/", 200, "x");
  LoadProbe probe;
  const auto loader = probe.prepare(server.url(), u"mine"_s);
  probe.onCompletion = [&](const QVariantMap& context) {
    EXPECT_EQ(context.value(u"userInfo"_s), u"mine"_s);
    EXPECT_EQ(objectOf<ZQURLLoader>(context.value(u"ZQURLLoader"_s)), loader);
  };
  loader->load();
  ASSERT_TRUE(waitFor([&] { return probe.completions == 1; }));
  EXPECT_EQ(probe.contextKeys, (QStringList{u"ZQURLLoader"_s, u"response"_s, u"userInfo"_s}));
}

TEST(LoaderContext, HasNoUserInfoWhereNoneWasGiven) {
  HttpServer server;
  server.route("/", 200, "x");
  LoadProbe probe;
  ASSERT_TRUE(probe.load(server.url()));
  EXPECT_EQ(probe.contextKeys, (QStringList{u"ZQURLLoader"_s, u"response"_s}));
}

TEST(LoaderTarget, MayBeCalledByName) {
  HttpServer server;
  server.route("/", 200, "named");
  NamedTarget target;
  ZQURLLoader::loaderWithURL(server.url(), &target, "loaded", 7)->load();
  ASSERT_TRUE(waitFor([&] { return target.calls > 0; }));
  EXPECT_EQ(target.data, QByteArray("named"));
  EXPECT_EQ(target.userInfo, 7);
  server.stop();
  ZQURLLoader::loaderWithURL(server.url(), &target, "loaded")->load();
  ASSERT_TRUE(waitFor([&] { return target.calls > 1; }));
  EXPECT_FALSE(target.data.isValid());
}

TEST(LoaderTarget, IsNotCalledBeforeControlIsBackInTheEventLoop) {
  HttpServer server;
  server.stop();
  LoadProbe refused, unknown, data;
  refused.start(server.url());
  unknown.start(QUrl(u"x-unknown:y"_s));
  data.start(QUrl(u"data:,x"_s));
  EXPECT_EQ(refused.completions + unknown.completions + data.completions, 0);
  EXPECT_TRUE(waitFor([&] {
    return refused.completions == 1 && unknown.completions == 1 && data.completions == 1;
  }));
}

TEST(LoaderTarget, IsNeverCalledForAnAddressOfWhichNoRequestCanBeMade) {
  LoadProbe probe, later;
  std::weak_ptr<ZQURLLoader> loader;
  for (const QUrl& url : {QUrl(), QUrl(u"http://[broken"_s)}) {
    loader = probe.prepare(url);
    loader.lock()->load();
    EXPECT_FALSE(loader.lock()->request());
    EXPECT_FALSE(loader.lock()->connection());
  }
  ASSERT_TRUE(later.load(QUrl(u"data:,later"_s)));
  EXPECT_EQ(probe.completions, 0);
  EXPECT_FALSE(loader.expired());
}

TEST(LoaderTarget, ThatHasGoneIsNotCalled) {
  HttpServer server;
  HttpLatch next;
  routeTwoPieces(server, next);
  auto target = std::make_unique<LoadProbe>();
  LoadProbe delegate;
  target->start(server.url());
  target->loader.lock()->setDelegate(&delegate);
  const std::weak_ptr<ZQURLLoader> loader = target->loader;
  ASSERT_TRUE(waitFor([&] { return delegate.totals.size() == 1; }));
  int* calls = new int(0);
  target->onCompletion = [calls](const QVariantMap&) { ++*calls; };
  target.reset();
  next.release();
  EXPECT_TRUE(waitFor([&] { return loader.expired(); }));
  EXPECT_EQ(*calls, 0);
  EXPECT_EQ(delegate.totals.back(), 8);
  delete calls;
}

TEST(LoaderDelegate, ThatHasGoneIsNotCalled) {
  HttpServer server;
  HttpLatch next;
  routeTwoPieces(server, next);
  LoadProbe target;
  auto delegate = std::make_unique<LoadProbe>();
  target.start(server.url());
  target.loader.lock()->setDelegate(delegate.get());
  ASSERT_TRUE(waitFor([&] { return delegate->totals.size() == 1; }));
  delegate.reset();
  next.release();
  ASSERT_TRUE(waitFor([&] { return target.completions == 1; }));
  EXPECT_EQ(target.data, "one more");
  EXPECT_TRUE(target.totals.empty());
}

TEST(LoaderDelegate, MayGoInItsOwnCall) {
  HttpServer server;
  server.route("/", 200, "body");
  LoadProbe target;
  auto* delegate = new LoadProbe;
  delegate->onLength = [delegate](ZQURLLoader&) { delete delegate; };
  target.start(server.url());
  target.loader.lock()->setDelegate(delegate);
  ASSERT_TRUE(waitFor([&] { return target.completions == 1; }));
  EXPECT_EQ(target.data, "body");
}

TEST(LoaderDelegate, MayStartAnotherLoadInItsCall) {
  HttpServer server;
  server.route("/", 200, "outer");
  server.route("/inner", 200, "inner");
  LoadProbe outer, fromLength, fromTotal, fromCompletion;
  outer.onLength = [&](ZQURLLoader&) { fromLength.start(server.url("/inner")); };
  outer.onTotal = [&](ZQURLLoader&, qint64) { fromTotal.start(server.url("/inner")); };
  outer.onCompletion = [&](const QVariantMap&) { fromCompletion.start(server.url("/inner")); };
  ASSERT_TRUE(outer.load(server.url()));
  for (LoadProbe* inner : {&fromLength, &fromTotal, &fromCompletion}) {
    ASSERT_TRUE(waitFor([&] { return inner->completions > 0; }));
    EXPECT_EQ(inner->data, "inner");
  }
  EXPECT_EQ(outer.data, "outer");
}

TEST(LoaderDelegate, MayRunAnEventLoopInItsCall) {
  HttpServer server;
  HttpLatch next;
  routeTwoPieces(server, next);
  server.route("/inner", 200, "inner");
  LoadProbe outer;
  std::vector<QByteArray> inner;
  const auto loadWithin = [&] {
    LoadProbe probe;
    ASSERT_TRUE(probe.load(server.url("/inner")));
    inner.push_back(probe.data.value_or("nothing"));
  };
  outer.onLength = [&](ZQURLLoader&) { loadWithin(); };
  outer.onTotal = [&](ZQURLLoader&, qint64 total) {
    // The second piece may come while this loop runs.
    if (total == 4)
      next.release();
    loadWithin();
  };
  outer.onCompletion = [&](const QVariantMap&) { loadWithin(); };
  ASSERT_TRUE(outer.load(server.url()));
  EXPECT_EQ(outer.data, "one more");
  EXPECT_EQ(outer.totals, (std::vector<qint64>{4, 8}));
  EXPECT_EQ(inner, std::vector<QByteArray>(4, "inner"));
}

TEST(LoaderDelegate, MayCancelTheLoadInItsCall) {
  HttpServer server;
  HttpLatch next;
  next.open();
  routeTwoPieces(server, next);
  LoadProbe fromLength, fromTotal, later;
  fromLength.onLength = [](ZQURLLoader& loader) { loader.connection()->cancel(); };
  fromTotal.onTotal = [](ZQURLLoader& loader, qint64) { loader.connection()->cancel(); };
  fromLength.start(server.url());
  fromTotal.start(server.url());
  ASSERT_TRUE(
      waitFor([&] { return fromLength.lengths.size() == 1 && fromTotal.totals.size() == 1; }));
  ASSERT_TRUE(later.load(server.url()));
  EXPECT_EQ(later.data, "one more");
  EXPECT_EQ(fromLength.completions + fromTotal.completions, 0);
  EXPECT_TRUE(fromLength.totals.empty());
  EXPECT_EQ(fromTotal.totals.size(), 1u);
}

TEST(LoaderConnection, EndsALoadWithoutAnyFurtherCallWhenItIsCancelled) {
  HttpServer server;
  std::atomic<bool> closed = false;
  server.route("/", [&](const HttpRequest&, HttpReply& reply) {
    reply.beginChunked(200);
    reply.chunk("some");
    reply.awaitClientClose();
    closed = true;
  });
  LoadProbe probe;
  probe.start(server.url());
  ASSERT_TRUE(waitFor([&] { return probe.totals.size() == 1; }));
  probe.loader.lock()->connection()->cancel();
  EXPECT_TRUE(waitFor([&] { return closed.load(); })) << "the connection stays open";
  runPostedEvents();
  EXPECT_EQ(probe.completions, 0);
  EXPECT_FALSE(probe.loader.expired()) << "a loader that never completes is never destroyed";
}

TEST(LoaderLifetime, EndsByItselfAfterTheUnitOfWorkOfTheCompletion) {
  HttpServer server;
  server.route("/", 200, "x");
  LoadProbe probe;
  bool alive = false;
  probe.onCompletion = [&](const QVariantMap&) { alive = !probe.loader.expired(); };
  probe.start(server.url());
  EXPECT_FALSE(probe.loader.expired()) << "nobody but the loader itself holds it";
  ASSERT_TRUE(waitFor([&] { return probe.loader.expired(); }));
  EXPECT_EQ(probe.completions, 1);
  EXPECT_TRUE(alive);
}

TEST(LoaderLifetime, EndsByItselfAfterAFailure) {
  HttpServer server;
  server.stop();
  LoadProbe probe;
  probe.start(server.url());
  ASSERT_TRUE(waitFor([&] { return probe.loader.expired(); }));
  EXPECT_EQ(probe.completions, 1);
}

TEST(LoaderLifetime, IsOverForAThousandLoaders) {
  HttpServer server;
  server.route(
      "*", [](const HttpRequest& request, HttpReply& reply) { reply.send(200, request.path()); });
  constexpr int Count = 1000;
  std::vector<std::unique_ptr<LoadProbe>> probes;
  for (int number = 0; number < Count; ++number) {
    probes.push_back(std::make_unique<LoadProbe>());
    probes.back()->start(server.url('/' + QByteArray::number(number)));
  }
  ASSERT_TRUE(waitFor([&] {
    return std::all_of(probes.begin(), probes.end(),
                       [](const auto& probe) { return probe->loader.expired(); });
  }));
  for (int number = 0; number < Count; ++number)
    EXPECT_EQ(probes[number]->data, '/' + QByteArray::number(number));
  EXPECT_LE(server.connectionCount(), 32);
}

TEST(LoaderMemory, GrowsInFewStepsWhateverTheNumberOfPieces) {
  constexpr int Pieces = 4096;
  const QByteArray piece(16 * 1024, 'm');
  LoadProbe probe;
  const auto loader = probe.prepare(QUrl(u"data:,"_s));
  loader->load();
  BufferGrowth growth;
  probe.onTotal = [&](ZQURLLoader& sender, qint64) { growth.look(sender.receivedData()); };
  for (int count = 0; count < Pieces; ++count)
    loader->connectionDidReceiveData(*loader->connection(), piece);
  EXPECT_EQ(probe.totals.size(), std::size_t(Pieces));
  EXPECT_EQ(probe.totals.back(), Pieces * piece.size());
  EXPECT_LE(growth.capacities.size(), 64u);
  EXPECT_LE(growth.excess, 64 * 1024);
  ASSERT_TRUE(waitFor([&] { return probe.completions == 1; }));
}

TEST(LoaderMemory, GrowsInFewStepsForABodyInChunks) {
  constexpr int Pieces = 4096;
  const QByteArray piece(16 * 1024, 'm');
  HttpServer server;
  server.route("/", [&](const HttpRequest&, HttpReply& reply) {
    reply.beginChunked(200);
    for (int sent = 0; sent < Pieces; ++sent)
      reply.chunk(piece);
    reply.endChunks();
  });
  LoadProbe probe;
  BufferGrowth growth;
  probe.onTotal = [&](ZQURLLoader& loader, qint64) { growth.look(loader.receivedData()); };
  ASSERT_TRUE(probe.load(server.url()));
  ASSERT_TRUE(probe.data);
  EXPECT_EQ(probe.data->size(), Pieces * piece.size());
  EXPECT_LE(growth.capacities.size(), 64u);
  EXPECT_LE(growth.excess, 64 * 1024);
}

TEST(LoaderBuffer, IsEmptiedByEachResponse) {
  LoadProbe probe;
  const auto loader = probe.prepare(QUrl(u"data:,final"_s));
  loader->load();
  URLConnection& connection = *loader->connection();
  const auto first = URLResponse::make(QUrl(u"http://a.example/"_s), 200, {});
  loader->connectionDidReceiveResponse(connection, first);
  loader->connectionDidReceiveData(connection, QByteArray("of the first"));
  EXPECT_EQ(loader->context().value(u"response"_s), any(first));
  ASSERT_TRUE(waitFor([&] { return probe.completions == 1; }));
  EXPECT_EQ(probe.data, "final");
  EXPECT_NE(probe.response, first);
  EXPECT_EQ(probe.lengths, (std::vector<qint64>{-1, 5}));
  EXPECT_EQ(probe.totals, (std::vector<qint64>{12, 5}));
}

TEST(LoaderThread, IsTheOneThatCalledLoad) {
  HttpServer server;
  server.route("/", 200, "x");
  std::vector<std::thread> threads;
  std::atomic<int> right = 0;
  for (int number = 0; number < 4; ++number)
    threads.emplace_back([&] {
      for (int load = 0; load < 25; ++load) {
        LoadProbe probe;
        const std::thread::id here = std::this_thread::get_id();
        const auto count = [&] { right += std::this_thread::get_id() == here; };
        probe.onTotal = [&](ZQURLLoader&, qint64) { count(); };
        probe.onCompletion = [&](const QVariantMap&) { count(); };
        if (probe.load(server.url()) && probe.data == "x" && probe.loader.expired())
          ++right;
      }
    });
  for (std::thread& thread : threads)
    thread.join();
  EXPECT_EQ(right, 4 * 25 * 3);
}

TEST(LoaderThread, MayEndWithLoadsUnderWay) {
  HttpServer server;
  std::atomic<int> closed = 0;
  server.route("/", [&](const HttpRequest&, HttpReply& reply) {
    reply.beginChunked(200);
    reply.chunk("some");
    reply.awaitClientClose();
    ++closed;
  });
  LoadProbe probe;
  const std::unique_ptr<QThread> thread(QThread::create([&] {
    probe.start(server.url());
    waitFor([&] { return probe.totals.size() == 1; });
  }));
  thread->start();
  ASSERT_TRUE(thread->wait(60'000));
  EXPECT_TRUE(waitFor([&] { return closed == 1; })) << "the connection outlives its thread";
  EXPECT_EQ(probe.completions, 0);
}

TEST(LoaderTarget, ThatRaisesIsLoggedAndTheLoaderEnds) {
  HttpServer server;
  server.route("/", 200, "x");
  LoadProbe probe;
  probe.onCompletion = [](const QVariantMap&) {
    throw InvalidArgumentException(u"raised on purpose"_s);
  };
  expectLog(u"raised on purpose"_s);
  probe.start(server.url());
  EXPECT_TRUE(waitFor([&] { return probe.loader.expired(); }));
}

} // namespace zq::testing

#include "loader_callsTest.moc"
