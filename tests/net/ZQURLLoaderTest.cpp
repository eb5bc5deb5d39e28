// The loader's contract, with the connection's operations called directly.
#include "zqticker/net/ZQURLLoader.h"

#include "tests/support/LogWatch.h"
#include "tests/support/waiting.h"
#include "zqticker/platform/objects/Exception.h"

#include <gtest/gtest.h>

#include <QtCore/QEventLoop>
#include <QtCore/QTimer>

#include <optional>
#include <type_traits>
#include <vector>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

namespace {
const QUrl Address(u"data:,unused"_s);

struct ResponseOnlyDelegate : ZQURLLoaderDelegate {
  bool loaderWillReceiveDataOfLength(ZQURLLoader&, qint64) override { return true; }
};
static_assert(std::is_abstract_v<ResponseOnlyDelegate>,
              "a delegate must answer loader:didReceiveDataOfLength:");

struct TotalsOnlyDelegate : ZQURLLoaderDelegate {
  void loaderDidReceiveDataOfLength(ZQURLLoader&, qint64 total) override {
    totals.push_back(total);
  }
  std::vector<qint64> totals;
};
static_assert(!std::is_abstract_v<TotalsOnlyDelegate>,
              "a delegate need not answer loader:willReceiveDataOfLength:");

struct FullDelegate : TotalsOnlyDelegate {
  bool loaderWillReceiveDataOfLength(ZQURLLoader&, qint64 length) override {
    lengths.push_back(length);
    return true;
  }
  std::vector<qint64> lengths;
};

// Writes down its completion calls.
struct Reader : QObject {
  void loaded(const Any& data, const QVariantMap& arrived) {
    datas.push_back(data);
    contexts.push_back(arrived);
    if (onLoaded)
      onLoaded();
  }
  std::vector<Any> datas;
  std::vector<QVariantMap> contexts;
  std::function<void()> onLoaded;
};

struct OptionalReader : QObject {
  void loaded(const std::optional<QByteArray>& data, const QVariantMap&) { datas.push_back(data); }
  std::vector<std::optional<QByteArray>> datas;
};

struct FailingReader : QObject {
  void loaded(const Any&, const QVariantMap&) {
    throw InvalidArgumentException(u"no room for it"_s);
  }
};

// Counts destructions.
struct CountedLoader : ZQURLLoader {
  explicit CountedLoader(int& count) : destructions(count) {}
  ~CountedLoader() override { ++destructions; }
  int& destructions;
};

Ref<URLResponse> responseOfLength(qint64 length) {
  return URLResponse::make(Address, u"text/plain"_s, length);
}

Ref<Error> anError() {
  return Error::make(u"NSURLErrorDomain"_s, -1005, u"lost"_s);
}

// A connection to pass along: it has ended before anything came of it.
URLConnection& idleConnection() {
  static const Ref<URLConnection> connection = [] {
    const auto made = URLConnection::connectionWithRequest(URLRequest::requestWithURL(Address), {});
    made->cancel();
    return made;
  }();
  return *connection;
}

// A loader under test: its events come from the test.
class ZQURLLoaderEvents : public ::testing::Test {
 protected:
  // Lets go of what the last completion left to the event loop.
  void TearDown() override { runPostedEvents(); }

  Ref<ZQURLLoader> makeLoader(const Any& userInfo = {}) {
    return ZQURLLoader::loaderWithURL(Address, &reader, &Reader::loaded, userInfo);
  }
  static void respond(ZQURLLoader& loader, qint64 length = -1) {
    loader.connectionDidReceiveResponse(idleConnection(), responseOfLength(length));
  }
  static void receive(ZQURLLoader& loader, const QByteArray& data) {
    loader.connectionDidReceiveData(idleConnection(), data);
  }
  static void finish(ZQURLLoader& loader) { loader.connectionDidFinishLoading(idleConnection()); }
  static void fail(ZQURLLoader& loader, const Ref<Error>& error = anError()) {
    loader.connectionDidFailWithError(idleConnection(), error);
  }

  Reader reader;
};
} // namespace

// Fields and context.

TEST_F(ZQURLLoaderEvents, StartsWithAnEmptyBufferAndItsAddress) {
  const auto loader = makeLoader();
  EXPECT_TRUE(loader->receivedData().isEmpty());
  EXPECT_FALSE(loader->receivedData().isNull());
  EXPECT_EQ(loader->URL(), Address);
  EXPECT_EQ(loader->target(), Target(&reader));
  EXPECT_TRUE(loader->selector());
  EXPECT_FALSE(loader->request());
  EXPECT_FALSE(loader->connection());
  EXPECT_EQ(loader->delegate(), nullptr);
  fail(*loader);
}

TEST_F(ZQURLLoaderEvents, StandsInItsOwnContextFromTheStart) {
  const auto loader = makeLoader();
  EXPECT_EQ(loader->context().keys(), QStringList{u"ZQURLLoader"_s});
  EXPECT_EQ(objectOf(loader->context().value(u"ZQURLLoader"_s)), loader);
  fail(*loader);
}

TEST_F(ZQURLLoaderEvents, KeepsUserInformationInTheContext) {
  const auto loader = makeLoader(u"mine"_s);
  finish(*loader);
  ASSERT_EQ(reader.contexts.size(), 1u);
  EXPECT_EQ(reader.contexts[0].value(u"userInfo"_s), Any(u"mine"_s));
}

TEST_F(ZQURLLoaderEvents, HasNoUserInformationKeyWhenNoneWasGiven) {
  const auto loader = makeLoader();
  finish(*loader);
  ASSERT_EQ(reader.contexts.size(), 1u);
  EXPECT_FALSE(reader.contexts[0].contains(u"userInfo"_s));
}

TEST_F(ZQURLLoaderEvents, KeepsEmptyUserInformation) {
  const auto loader = makeLoader(QString());
  finish(*loader);
  ASSERT_EQ(reader.contexts.size(), 1u);
  EXPECT_TRUE(reader.contexts[0].contains(u"userInfo"_s));
}

TEST_F(ZQURLLoaderEvents, TakesNewValuesForEveryField) {
  const auto loader = makeLoader();
  Reader other;
  FullDelegate progress;
  const auto request = URLRequest::requestWithURL(Address);
  loader->setReceivedData("abc");
  loader->setRequest(request);
  loader->setConnection(nullptr);
  loader->setURL(QUrl(u"data:,other"_s));
  loader->setTarget(&other);
  loader->setSelector(Selector());
  loader->setDelegate(&progress);
  EXPECT_EQ(loader->receivedData(), "abc");
  EXPECT_EQ(loader->request(), request);
  EXPECT_FALSE(loader->connection());
  EXPECT_EQ(loader->URL(), QUrl(u"data:,other"_s));
  EXPECT_EQ(loader->target(), Target(&other));
  EXPECT_FALSE(loader->selector());
  EXPECT_EQ(loader->delegate(), &progress);
  loader->setContext({{u"ZQURLLoader"_s, any(loader)}, {u"a"_s, 1}});
  EXPECT_EQ(loader->context().value(u"a"_s), Any(1));
  fail(*loader);
}

TEST_F(ZQURLLoaderEvents, KeepsItsContextWhenTheSameOneIsSet) {
  const auto loader = makeLoader(u"mine"_s);
  loader->setContext(loader->context());
  EXPECT_EQ(objectOf(loader->context().value(u"ZQURLLoader"_s)), loader);
  EXPECT_EQ(loader->context().value(u"userInfo"_s), Any(u"mine"_s));
  fail(*loader);
}

// The body and its progress.

TEST_F(ZQURLLoaderEvents, TellsTheTotalAfterEachPiece) {
  const auto loader = makeLoader();
  TotalsOnlyDelegate progress;
  loader->setDelegate(&progress);
  respond(*loader, 35);
  receive(*loader, QByteArray(10, 'a'));
  receive(*loader, QByteArray(20, 'b'));
  receive(*loader, QByteArray(5, 'c'));
  finish(*loader);
  EXPECT_EQ(progress.totals, (std::vector<qint64>{10, 30, 35}));
  ASSERT_EQ(reader.datas.size(), 1u);
  EXPECT_EQ(reader.datas[0], Any(QByteArray(10, 'a') + QByteArray(20, 'b') + QByteArray(5, 'c')));
}

TEST_F(ZQURLLoaderEvents, TellsTheExpectedLengthToADelegateThatAnswers) {
  const auto loader = makeLoader();
  FullDelegate progress;
  loader->setDelegate(&progress);
  respond(*loader, 35);
  respond(*loader, -1);
  EXPECT_EQ(progress.lengths, (std::vector<qint64>{35, -1}));
  fail(*loader);
}

TEST_F(ZQURLLoaderEvents, AsksOnlyTheFirstDelegateOperationWhetherItIsAnswered) {
  const auto loader = makeLoader();
  TotalsOnlyDelegate progress;
  EXPECT_FALSE(progress.loaderWillReceiveDataOfLength(*loader, 35));
  loader->setDelegate(&progress);
  respond(*loader, 3);
  receive(*loader, "abc");
  EXPECT_EQ(progress.totals, std::vector<qint64>{3});
  fail(*loader);
}

TEST_F(ZQURLLoaderEvents, LoadsWithoutADelegate) {
  const auto loader = makeLoader();
  respond(*loader, 3);
  receive(*loader, "abc");
  finish(*loader);
  ASSERT_EQ(reader.datas.size(), 1u);
  EXPECT_EQ(reader.datas[0], Any(QByteArray("abc")));
}

TEST_F(ZQURLLoaderEvents, DoesNotCallADelegateThatHasGone) {
  const auto loader = makeLoader();
  std::optional<FullDelegate> progress(std::in_place);
  loader->setDelegate(&*progress);
  progress.reset();
  EXPECT_EQ(loader->delegate(), nullptr);
  respond(*loader);
  receive(*loader, "abc");
  finish(*loader);
  EXPECT_EQ(reader.datas.size(), 1u);
}

TEST_F(ZQURLLoaderEvents, EmptiesTheBufferAtEachResponse) {
  const auto loader = makeLoader();
  TotalsOnlyDelegate progress;
  loader->setDelegate(&progress);
  respond(*loader);
  receive(*loader, "a page that moved");
  respond(*loader);
  EXPECT_EQ(loader->receivedData().size(), 0);
  receive(*loader, "final");
  finish(*loader);
  EXPECT_EQ(progress.totals, (std::vector<qint64>{17, 5}));
  ASSERT_EQ(reader.datas.size(), 1u);
  EXPECT_EQ(reader.datas[0], Any(QByteArray("final")));
}

TEST_F(ZQURLLoaderEvents, HandsOverTheLastResponse) {
  const auto loader = makeLoader();
  const auto last = responseOfLength(5);
  respond(*loader);
  loader->connectionDidReceiveResponse(idleConnection(), last);
  finish(*loader);
  ASSERT_EQ(reader.contexts.size(), 1u);
  EXPECT_EQ(objectOf<URLResponse>(reader.contexts[0].value(u"response"_s)), last);
}

TEST_F(ZQURLLoaderEvents, DoesNotSetAsideAllThatAResponseAnnounces) {
  const auto loader = makeLoader();
  respond(*loader, qint64(1) << 40);
  EXPECT_LE(loader->receivedData().capacity(), qsizetype(128) << 20);
  fail(*loader);
}

TEST_F(ZQURLLoaderEvents, FollowsEveryRedirect) {
  const auto loader = makeLoader();
  const auto proposed = URLRequest::requestWithURL(Address);
  EXPECT_EQ(loader->connectionWillSendRequest(idleConnection(), proposed, responseOfLength(0)),
            proposed);
  fail(*loader);
}

// Completion.

TEST_F(ZQURLLoaderEvents, HandsOverAnEmptyBodyAsEmptyData) {
  OptionalReader optionalReader;
  const auto loader = ZQURLLoader::loaderWithURL(Address, &optionalReader, &OptionalReader::loaded);
  respond(*loader, 0);
  finish(*loader);
  ASSERT_EQ(optionalReader.datas.size(), 1u);
  ASSERT_TRUE(optionalReader.datas[0].has_value());
  EXPECT_TRUE(optionalReader.datas[0]->isEmpty());
}

TEST_F(ZQURLLoaderEvents, HandsOverEmptyDataWithoutAnyResponse) {
  const auto loader = makeLoader();
  finish(*loader);
  ASSERT_EQ(reader.datas.size(), 1u);
  EXPECT_TRUE(reader.datas[0].isValid());
  EXPECT_EQ(reader.datas[0].typeId(), QMetaType::QByteArray);
  EXPECT_FALSE(reader.contexts[0].contains(u"response"_s));
}

TEST_F(ZQURLLoaderEvents, HandsOverNothingAfterAFailureInTheMiddle) {
  const auto loader = makeLoader();
  const auto error = anError();
  respond(*loader, 35);
  receive(*loader, QByteArray(10, 'a'));
  fail(*loader, error);
  ASSERT_EQ(reader.datas.size(), 1u);
  EXPECT_FALSE(reader.datas[0].isValid());
  EXPECT_EQ(objectOf<Error>(reader.contexts[0].value(u"error"_s)), error);
  EXPECT_TRUE(reader.contexts[0].contains(u"response"_s));
}

TEST_F(ZQURLLoaderEvents, HasNoResponseAfterAFailureBeforeTheFirst) {
  const auto loader = makeLoader();
  fail(*loader);
  ASSERT_EQ(reader.contexts.size(), 1u);
  EXPECT_FALSE(reader.contexts[0].contains(u"response"_s));
}

TEST_F(ZQURLLoaderEvents, HasNoErrorAfterASuccess) {
  const auto loader = makeLoader();
  finish(*loader);
  ASSERT_EQ(reader.contexts.size(), 1u);
  EXPECT_FALSE(reader.contexts[0].contains(u"error"_s));
}

TEST_F(ZQURLLoaderEvents, DoesNotCallATargetThatHasGone) {
  int destructions = 0;
  {
    auto gone = std::make_unique<Reader>();
    const auto loader = std::make_shared<CountedLoader>(destructions);
    loader->initWithURL(Address, gone.get(), &Reader::loaded);
    gone.reset();
    finish(*loader);
  }
  runPostedEvents();
  EXPECT_EQ(destructions, 1);
}

TEST_F(ZQURLLoaderEvents, CallsItsTargetOnce) {
  const auto loader = makeLoader();
  finish(*loader);
  finish(*loader);
  fail(*loader);
  runPostedEvents();
  fail(*loader);
  EXPECT_EQ(reader.datas.size(), 1u);
}

TEST_F(ZQURLLoaderEvents, RaisesForASelectorThatItsTargetDoesNotKnow) {
  std::weak_ptr<ZQURLLoader> weak;
  {
    const auto loader = ZQURLLoader::loaderWithURL(Address, &reader, "nobodyKnows:context:");
    weak = loader;
    EXPECT_THROW(finish(*loader), UnrecognizedSelectorException);
  }
  runPostedEvents();
  EXPECT_TRUE(weak.expired());
}

TEST_F(ZQURLLoaderEvents, PassesOnWhatItsTargetRaisesAndGoes) {
  FailingReader failing;
  std::weak_ptr<ZQURLLoader> weak;
  {
    const auto loader = ZQURLLoader::loaderWithURL(Address, &failing, &FailingReader::loaded);
    weak = loader;
    EXPECT_THROW(fail(*loader), InvalidArgumentException);
  }
  runPostedEvents();
  EXPECT_TRUE(weak.expired());
}

// Life.

TEST_F(ZQURLLoaderEvents, LivesUntilItsUnitOfWorkHasEndedAndNoLonger) {
  int destructions = 0;
  ZQURLLoader* pointer = nullptr;
  {
    const auto loader = std::make_shared<CountedLoader>(destructions);
    loader->initWithURL(Address, &reader, &Reader::loaded, u"mine"_s);
    pointer = loader.get();
  }
  EXPECT_EQ(destructions, 0) << "nobody but itself keeps it";
  receive(*pointer, "abc");
  finish(*pointer);
  reader.contexts.clear();
  EXPECT_EQ(destructions, 0) << "alive until control is back in the event loop";
  EXPECT_EQ(pointer->receivedData(), "abc");
  EXPECT_EQ(pointer->context().value(u"userInfo"_s), Any(u"mine"_s));
  runPostedEvents();
  EXPECT_EQ(destructions, 1);
}

TEST_F(ZQURLLoaderEvents, GoesTheSameWayAfterAFailure) {
  int destructions = 0;
  {
    const auto loader = std::make_shared<CountedLoader>(destructions);
    loader->initWithURL(Address, &reader, &Reader::loaded);
    fail(*loader);
  }
  reader.contexts.clear();
  EXPECT_EQ(destructions, 0);
  runPostedEvents();
  EXPECT_EQ(destructions, 1);
}

TEST_F(ZQURLLoaderEvents, IsHeldByAContextThatTheTargetKeepsAndGoesWithIt) {
  int destructions = 0;
  {
    const auto loader = std::make_shared<CountedLoader>(destructions);
    loader->initWithURL(Address, &reader, &Reader::loaded);
    finish(*loader);
  }
  runPostedEvents();
  EXPECT_EQ(destructions, 0);
  const auto kept = objectOf<ZQURLLoader>(reader.contexts.at(0).value(u"ZQURLLoader"_s));
  ASSERT_TRUE(kept);
  EXPECT_TRUE(kept->context().isEmpty());
  reader.contexts.clear();
  EXPECT_EQ(destructions, 0);
  const_cast<Ref<ZQURLLoader>&>(kept).reset();
  EXPECT_EQ(destructions, 1);
}

TEST_F(ZQURLLoaderEvents, OutlivesAnEventLoopThatItsTargetRuns) {
  int destructions = 0;
  reader.onLoaded = [&] {
    reader.contexts.clear();
    runPostedEvents();
    EXPECT_EQ(destructions, 0);
  };
  {
    const auto loader = std::make_shared<CountedLoader>(destructions);
    loader->initWithURL(Address, &reader, &Reader::loaded);
    finish(*loader);
  }
  EXPECT_EQ(destructions, 0);
  runPostedEvents();
  EXPECT_EQ(destructions, 1);
}

TEST_F(ZQURLLoaderEvents, OutlivesAnEventLoopThatIsRunLaterInTheSameUnitOfWork) {
  int destructions = 0;
  QEventLoop outer;
  QTimer::singleShot(0, &outer, [&] {
    {
      const auto loader = std::make_shared<CountedLoader>(destructions);
      loader->initWithURL(Address, &reader, &Reader::loaded);
      finish(*loader);
    }
    reader.contexts.clear();
    QEventLoop inner;
    QTimer::singleShot(0, &inner, [&] { inner.quit(); });
    inner.exec();
    EXPECT_EQ(destructions, 0);
    QTimer::singleShot(0, &outer, [&] { outer.quit(); });
  });
  outer.exec();
  EXPECT_EQ(destructions, 1);
}

TEST_F(ZQURLLoaderEvents, IsNeverDestroyedWhenItIsNeverLoaded) {
  static int destructions = 0;
  {
    const auto loader = std::make_shared<CountedLoader>(destructions);
    loader->initWithURL(Address, &reader, &Reader::loaded);
  }
  runPostedEvents();
  EXPECT_EQ(destructions, 0);
}

// Loading.

TEST_F(ZQURLLoaderEvents, MakesARequestWithTheDefaultsWhenItLoads) {
  const auto loader = makeLoader();
  loader->load();
  ASSERT_TRUE(loader->request());
  EXPECT_EQ(loader->request()->URL(), Address);
  EXPECT_EQ(loader->request()->cachePolicy(), URLRequestCachePolicy::UseProtocolCachePolicy);
  EXPECT_EQ(loader->request()->timeoutInterval(), 60);
  EXPECT_TRUE(loader->connection());
  EXPECT_TRUE(waitFor([&] { return !reader.datas.empty(); }));
}

TEST_F(ZQURLLoaderEvents, MakesARequestWithPolicyAndTimeout) {
  const auto loader = makeLoader();
  loader->loadWithCachePolicy(URLRequestCachePolicy::ReloadIgnoringCacheData, 2.5);
  ASSERT_TRUE(loader->request());
  EXPECT_EQ(loader->request()->cachePolicy(), URLRequestCachePolicy::ReloadIgnoringCacheData);
  EXPECT_EQ(loader->request()->timeoutInterval(), 2.5);
  EXPECT_TRUE(waitFor([&] { return !reader.datas.empty(); }));
}

TEST_F(ZQURLLoaderEvents, NeverCallsItsTargetWhenNoRequestCanBeMade) {
  static int destructions = 0;
  {
    const auto loader = std::make_shared<CountedLoader>(destructions);
    loader->initWithURL(QUrl(), &reader, &Reader::loaded);
    loader->load();
    EXPECT_FALSE(loader->request());
    EXPECT_FALSE(loader->connection());
  }
  runPostedEvents();
  EXPECT_TRUE(reader.datas.empty());
  EXPECT_EQ(destructions, 0);
}

TEST_F(ZQURLLoaderEvents, LoadsWithoutBeingKeptAndFreesItself) {
  int destructions = 0;
  {
    const auto loader = std::make_shared<CountedLoader>(destructions);
    loader->initWithURL(QUrl(u"data:,hello"_s), &reader, &Reader::loaded);
    loader->load();
  }
  EXPECT_TRUE(reader.datas.empty());
  ASSERT_TRUE(waitFor([&] { return !reader.datas.empty(); }));
  EXPECT_EQ(reader.datas[0], Any(QByteArray("hello")));
  reader.contexts.clear();
  EXPECT_TRUE(waitFor([&] { return destructions == 1; }));
}

TEST_F(ZQURLLoaderEvents, ReplacesRequestAndConnectionWithASecondLoad) {
  const auto loader = makeLoader();
  loader->load();
  const auto firstRequest = loader->request();
  const auto firstConnection = loader->connection();
  loader->setURL(QUrl(u"data:,second"_s));
  loader->load();
  EXPECT_NE(loader->request(), firstRequest);
  EXPECT_NE(loader->connection(), firstConnection);
  EXPECT_EQ(loader->request()->URL(), QUrl(u"data:,second"_s));
  ASSERT_TRUE(waitFor([&] { return !reader.datas.empty(); }));
  runPostedEvents();
  EXPECT_EQ(reader.datas.size(), 1u);
  EXPECT_EQ(loader->receivedData(), "second") << "both loads fill one buffer";
}

TEST_F(ZQURLLoaderEvents, LogsASelectorThatItsTargetDoesNotKnowWhenTheEventLoopCalls) {
  std::weak_ptr<ZQURLLoader> weak;
  {
    const auto loader = ZQURLLoader::loaderWithURL(Address, &reader, "nobodyKnows:context:");
    weak = loader;
    loader->load();
  }
  expectLog(u"zqticker.net"_s);
  EXPECT_TRUE(waitFor([&] { return weak.expired(); }));
}
