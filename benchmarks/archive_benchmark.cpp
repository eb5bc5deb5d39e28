// Archives of 20,000 text signs: how fast they are written and read, beside a C library and
// Python's standard library on the same bytes in the same run.
//
//   WriteArchive        objects of a text sign's keys, with attributed text, into an archive
//   ReadArchive         the same archive into objects, all keys read
//   WriteList           the archive's property list, value by value, into binary
//   ReadList            the binary list into checked values, every one looked at
//   ReadXmlList         the same list from XML
//   LibplistWrite       WriteList by libplist
//   LibplistRead        ReadList by libplist
//   PlistlibWrite       WriteList by Python's plistlib
//   PlistlibRead        ReadList by Python's plistlib
//   WriteSigns          2,000 real text signs, their renderings included
//   ReadSigns           the same signs back, rendering each text anew
//   ReadSignsWithoutPictures   archives of another program, which leaves the renderings out
//
// Bytes per second count the bytes of the binary archive.
#include "benchmarks/ratio_main.h"
#include "zqticker/platform/archiving/ClassRegistry.h"
#include "zqticker/platform/archiving/KeyedArchiver.h"
#include "zqticker/platform/archiving/KeyedUnarchiver.h"
#include "zqticker/platform/archiving/PropertyListWriter_p.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/platform/text/text_attributes.h"
#include "zqticker/signs/ZQTextTickerSign.h"

#include <benchmark/benchmark.h>

#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtGui/QGuiApplication>

#include <plist/plist.h>

#include <cstdlib>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {

constexpr int SignCount = 20000;
constexpr int RealSignCount = 2000;

// The keys and values of a text sign, without layout and drawing.
class PlainSign : public Object {
  Q_GADGET
  ZQ_OBJECT

 public:
  void encodeWithCoder(Coder& coder) override {
    coder.encodeInt(scrollDirection, "ZQScrollDirection");
    coder.encodeBool(continuousScrolling, "ZQContinuousScrolling");
    coder.encodeInt(loopCount, "ZQLoopCount");
    coder.encodeSize(size, "ZQSize");
    coder.encodeInt(actionType, "ZQActionType");
    coder.encodeObject(actionString, "ZQActionString");
    coder.encodeFloat(float(loopDelay), "ZQLoopDelay");
    coder.encodeObject(identifier, "ZQSignIdentifier");
    coder.encodeObject(Any(), "ZQImage");
    coder.encodeObject(textRepresentation, "ZQTextRepresentation");
    coder.encodeObject(text, "ZQText");
  }

  Ref<Object> initWithCoder(Coder& coder) override {
    scrollDirection = coder.decodeIntForKey("ZQScrollDirection");
    continuousScrolling = coder.decodeBoolForKey("ZQContinuousScrolling");
    loopCount = coder.decodeIntForKey("ZQLoopCount");
    size = coder.decodeSizeForKey("ZQSize");
    actionType = coder.decodeIntForKey("ZQActionType");
    actionString = coder.decodeStringForKey("ZQActionString");
    loopDelay = double(coder.decodeFloatForKey("ZQLoopDelay"));
    identifier = coder.decodeStringForKey("ZQSignIdentifier");
    coder.decodeObjectForKey("ZQImage");
    textRepresentation = coder.decodeStringForKey("ZQTextRepresentation");
    text = coder.decodeObjectOfClass<AttributedString>("ZQText");
    return shared_from_this();
  }

  int scrollDirection = 1;
  bool continuousScrolling = false;
  int loopCount = -1;
  QSizeF size;
  int actionType = 1;
  std::optional<QString> actionString;
  double loopDelay = 0;
  std::optional<QString> identifier;
  std::optional<QString> textRepresentation;
  Ref<AttributedString> text;
};

ZQ_REGISTER_CLASS(PlainSign);

QString lineOf(int number) {
  return u"Headline %1: rain in the south, sun in the north, later wind"_s.arg(number);
}

Ref<AttributedString> textOf(int number) {
  static const Any font = any(Font::fontWithName(u"Helvetica"_s, 14));
  static const Any color = any(Color::calibratedRGB(0.1, 0.2, 0.3));
  return AttributedString::make(lineOf(number),
                                {{FontAttributeName, font}, {ForegroundColorAttributeName, color}});
}

const QVariantList& plainSigns() {
  static const QVariantList signs = [] {
    QVariantList made;
    for (int i = 0; i < SignCount; ++i) {
      const auto sign = std::make_shared<PlainSign>();
      sign->size = QSizeF(200 + i % 997 * 0.37, 17);
      sign->actionString = u"https://example.org/headlines/%1"_s.arg(i);
      sign->loopDelay = i % 10 * 0.1;
      sign->identifier = u"headline-%1"_s.arg(i);
      sign->textRepresentation = lineOf(i);
      sign->text = textOf(i);
      made.append(any(sign));
    }
    return made;
  }();
  return signs;
}

const QByteArray& archive() {
  static const QByteArray bytes = KeyedArchiver::archivedDataWithRootObject(Any(plainSigns()));
  return bytes;
}

void countBytes(benchmark::State& state, int signs = 0) {
  state.SetBytesProcessed(int64_t(state.iterations()) * archive().size());
  if (signs)
    state.counters["signs/s"] =
        benchmark::Counter(double(state.iterations()) * signs, benchmark::Counter::kIsRate);
}

void WriteArchive(benchmark::State& state) {
  const Any signs = Any(plainSigns());
  for (auto _ : state)
    benchmark::DoNotOptimize(KeyedArchiver::archivedDataWithRootObject(signs));
  countBytes(state, SignCount);
}
BENCHMARK(WriteArchive)->Unit(benchmark::kMillisecond);

void ReadArchive(benchmark::State& state) {
  for (auto _ : state)
    benchmark::DoNotOptimize(KeyedUnarchiver::unarchiveObjectWithData(archive()));
  countBytes(state, SignCount);
}
BENCHMARK(ReadArchive)->Unit(benchmark::kMillisecond);

using Index = PropertyList::Index;

Index rewrite(const PropertyList& list, Index index, PropertyListWriter& writer) {
  using Kind = PropertyList::Kind;
  switch (list.kind(index)) {
  case Kind::Boolean:
    return writer.addBoolean(list.boolean(index));
  case Kind::Integer:
    return writer.addInteger(list.integer(index));
  case Kind::Real:
    return list.isSinglePrecision(index) ? writer.addSingle(float(list.real(index)))
                                         : writer.addReal(list.real(index));
  case Kind::Date:
    return writer.addDate(list.real(index));
  case Kind::Uid:
    return writer.addUid(list.uid(index));
  case Kind::Data:
    return writer.addData(list.data(index));
  case Kind::String:
    if (const auto ascii = list.asciiString(index))
      return writer.addAscii(*ascii);
    return writer.addString(list.string(index));
  case Kind::Array:
  case Kind::Set: {
    std::vector<Index> elements;
    for (std::uint32_t i = 0; i < list.count(index); ++i)
      elements.push_back(rewrite(list, list.element(index, i), writer));
    return writer.addArray(elements);
  }
  case Kind::Dictionary:
    break;
  }
  std::vector<Index> keys;
  std::vector<Index> values;
  for (std::uint32_t i = 0; i < list.count(index); ++i) {
    keys.push_back(rewrite(list, list.key(index, i), writer));
    values.push_back(rewrite(list, list.value(index, i), writer));
  }
  return writer.addDictionary(keys, values);
}

void WriteList(benchmark::State& state) {
  const PropertyList list = PropertyList::fromData(archive());
  for (auto _ : state) {
    PropertyListWriter writer;
    benchmark::DoNotOptimize(writer.finish(rewrite(list, list.top(), writer)));
  }
  countBytes(state);
}
BENCHMARK(WriteList)->Unit(benchmark::kMillisecond);

// Looks at every value, as a reader of the whole list would.
std::uint64_t visit(const PropertyList& list) {
  using Kind = PropertyList::Kind;
  std::uint64_t sum = 0;
  for (Index index = 0; index < list.size(); ++index) {
    if (list.kind(index) == Kind::String)
      sum += std::uint64_t(list.string(index).size());
    else if (list.kind(index) == Kind::Data)
      sum += std::uint64_t(list.data(index).size());
    else if (list.kind(index) == Kind::Dictionary)
      for (std::uint32_t i = 0; i < list.count(index); ++i)
        sum += list.key(index, i) + list.value(index, i);
    else if (list.isContainer(index))
      for (std::uint32_t i = 0; i < list.count(index); ++i)
        sum += list.element(index, i);
    else
      sum += std::uint64_t(list.integer(index));
  }
  return sum;
}

void ReadList(benchmark::State& state) {
  for (auto _ : state)
    benchmark::DoNotOptimize(visit(PropertyList::fromData(archive())));
  countBytes(state);
}
BENCHMARK(ReadList)->Unit(benchmark::kMillisecond);

plist_t libplistTree() {
  plist_t tree = nullptr;
  plist_from_bin(archive().constData(), std::uint32_t(archive().size()), &tree);
  return tree;
}

void ReadXmlList(benchmark::State& state) {
  char* text = nullptr;
  std::uint32_t size = 0;
  const plist_t tree = libplistTree();
  plist_to_xml(tree, &text, &size);
  plist_free(tree);
  const QByteArray xml(text, size);
  std::free(text);
  for (auto _ : state)
    benchmark::DoNotOptimize(visit(PropertyList::fromData(xml)));
  countBytes(state);
}
BENCHMARK(ReadXmlList)->Unit(benchmark::kMillisecond);

void LibplistWrite(benchmark::State& state) {
  const plist_t tree = libplistTree();
  for (auto _ : state) {
    char* bytes = nullptr;
    std::uint32_t size = 0;
    plist_to_bin(tree, &bytes, &size);
    benchmark::DoNotOptimize(bytes);
    std::free(bytes);
  }
  plist_free(tree);
  countBytes(state);
}
BENCHMARK(LibplistWrite)->Unit(benchmark::kMillisecond);

void LibplistRead(benchmark::State& state) {
  for (auto _ : state) {
    plist_t tree = libplistTree();
    benchmark::DoNotOptimize(tree);
    plist_free(tree);
  }
  countBytes(state);
}
BENCHMARK(LibplistRead)->Unit(benchmark::kMillisecond);

// The seconds that Python takes for `statement`, measured inside it; `data` is the archive and
// `tree` what plistlib read from it.
double pythonSeconds(const QString& statement) {
  QTemporaryDir folder;
  QFile file(folder.filePath(u"archive"_s));
  if (!file.open(QIODevice::WriteOnly) || file.write(archive()) != archive().size())
    return 0;
  file.close();
  QProcess python;
  python.start(u"python3"_s, {u"-c"_s,
                              u"import plistlib, sys, time\n"
                              "data = open(sys.argv[1], 'rb').read()\n"
                              "tree = plistlib.loads(data)\n"
                              "begin = time.perf_counter()\n"_s +
                                  statement + u"\nprint(time.perf_counter() - begin)\n"_s,
                              file.fileName()});
  python.waitForFinished(-1);
  return python.readAllStandardOutput().trimmed().toDouble();
}

void runInPython(benchmark::State& state, const QString& statement) {
  for (auto _ : state) {
    const double seconds = pythonSeconds(statement);
    if (seconds <= 0) {
      state.SkipWithError("python3 is not at hand");
      return;
    }
    state.SetIterationTime(seconds);
  }
  countBytes(state);
}

void PlistlibWrite(benchmark::State& state) {
  runInPython(state, u"plistlib.dumps(tree, fmt=plistlib.FMT_BINARY)"_s);
}
BENCHMARK(PlistlibWrite)->UseManualTime()->Iterations(2)->Unit(benchmark::kMillisecond);

void PlistlibRead(benchmark::State& state) {
  runInPython(state, u"plistlib.loads(data)"_s);
}
BENCHMARK(PlistlibRead)->UseManualTime()->Iterations(2)->Unit(benchmark::kMillisecond);

const QVariantList& realSigns() {
  static const QVariantList signs = [] {
    QVariantList made;
    for (int i = 0; i < RealSignCount; ++i)
      made.append(any(ZQTextTickerSign::make(textOf(i))));
    return made;
  }();
  return signs;
}

void countSigns(benchmark::State& state, qsizetype archiveSize) {
  state.SetBytesProcessed(int64_t(state.iterations()) * archiveSize);
  state.counters["signs/s"] =
      benchmark::Counter(double(state.iterations()) * RealSignCount, benchmark::Counter::kIsRate);
}

void WriteSigns(benchmark::State& state) {
  const Any signs = Any(realSigns());
  qsizetype size = 0;
  for (auto _ : state)
    size = KeyedArchiver::archivedDataWithRootObject(signs).size();
  countSigns(state, size);
}
BENCHMARK(WriteSigns)->Unit(benchmark::kMillisecond);

void ReadSigns(benchmark::State& state) {
  const QByteArray bytes = KeyedArchiver::archivedDataWithRootObject(Any(realSigns()));
  for (auto _ : state)
    benchmark::DoNotOptimize(KeyedUnarchiver::unarchiveObjectWithData(bytes));
  countSigns(state, bytes.size());
}
BENCHMARK(ReadSigns)->Unit(benchmark::kMillisecond);

void ReadSignsWithoutPictures(benchmark::State& state) {
  QVariantList signs = plainSigns().first(RealSignCount);
  QByteArray bytes = KeyedArchiver::archivedDataWithRootObject(Any(signs));
  KeyedUnarchiver::Options options;
  options.classNames = {{u"TextSign!"_s, u"ZQTextTickerSign"_s}};
  // A class name of the same length that nobody registered, read as that of the real sign.
  bytes.replace("PlainSign", "TextSign!");
  for (auto _ : state)
    benchmark::DoNotOptimize(KeyedUnarchiver::unarchiveObjectWithData(bytes, options));
  countSigns(state, bytes.size());
}
BENCHMARK(ReadSignsWithoutPictures)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
  return runBenchmarks(argc, argv,
                       {{"ReadList", "LibplistRead"},
                        {"ReadList", "PlistlibRead"},
                        {"WriteList", "LibplistWrite"},
                        {"WriteList", "PlistlibWrite"},
                        {"ReadArchive", "LibplistRead"},
                        {"ReadArchive", "PlistlibRead"},
                        {"WriteArchive", "LibplistWrite"},
                        {"WriteArchive", "PlistlibWrite"}});
}

#include "archive_benchmark.moc"
