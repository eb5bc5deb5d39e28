#include "zqticker/platform/archiving/PlaceholderObject.h"

#include "tests/platform/archiving/ArchiveBuilder.h"
#include "zqticker/platform/archiving/KeyedArchiver.h"
#include "zqticker/platform/archiving/KeyedUnarchiver.h"
#include "zqticker/platform/archiving/SequentialArchiver.h"
#include "zqticker/platform/objects/Exception.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

namespace {

using Form = PlaceholderObject::Form;

KeyedUnarchiver::Options keeping() {
  KeyedUnarchiver::Options options;
  options.keepUnknownClasses = true;
  return options;
}

Any read(const QByteArray& archive) {
  return KeyedUnarchiver::unarchiveObjectWithData(archive, keeping());
}

Ref<PlaceholderObject> placeholder(const QByteArray& archive) {
  return objectOf<PlaceholderObject>(read(archive));
}

Ref<PlaceholderObject> placeholder(const Table& objects) {
  return placeholder(binaryArchive(objects));
}

// A value of an archive as a text that does not depend on the places of the objects.
class Shape {
 public:
  explicit Shape(const QByteArray& data) : archive_(data), list_(archive_.list()) {
    const auto root = list_.find(archive_.top(), "root"_L1);
    text = root ? value(*root) : QString();
  }
  QString text;

 private:
  QString value(PropertyList::Index index) {
    using Kind = PropertyList::Kind;
    switch (list_.kind(index)) {
    case Kind::Uid:
      return object(list_.uid(index));
    case Kind::Boolean:
      return list_.boolean(index) ? u"true"_s : u"false"_s;
    case Kind::Integer:
      return u"int %1"_s.arg(list_.integer(index));
    case Kind::Real:
      return (list_.isSinglePrecision(index) ? u"float %1"_s : u"double %1"_s)
          .arg(list_.real(index), 0, 'g', 17);
    case Kind::Date:
      return u"date %1"_s.arg(list_.real(index));
    case Kind::Data:
      return u"data "_s + QString::fromLatin1(list_.data(index).toHex());
    case Kind::String:
      return u'"' + list_.string(index) + u'"';
    case Kind::Array:
    case Kind::Set: {
      QStringList elements;
      for (quint32 i = 0; i < list_.count(index); ++i)
        elements.append(value(list_.element(index, i)));
      return u'[' + elements.join(u", "_s) + u']';
    }
    case Kind::Dictionary:
      break;
    }
    QStringList pairs;
    for (quint32 i = 0; i < list_.count(index); ++i)
      pairs.append(list_.string(list_.key(index, i)) + u'=' + value(list_.value(index, i)));
    // The order of keys carries no meaning.
    pairs.sort();
    return u'{' + pairs.join(u", "_s) + u'}';
  }

  QString object(quint32 uid) {
    if (archive_.entry(uid) == KeyedArchive::Entry::Nothing)
      return u"nil"_s;
    if (archive_.entry(uid) == KeyedArchive::Entry::Class)
      return value(archive_.object(uid));
    if (archive_.entry(uid) != KeyedArchive::Entry::Record)
      return u"@"_s + value(archive_.object(uid));
    if (met_.contains(uid))
      return u"#%1"_s.arg(met_.indexOf(uid));
    met_.append(uid);
    // The class stands where it stood, the other keys in their order.
    QStringList pairs;
    const PropertyList::Index record = archive_.object(uid);
    for (quint32 i = 0; i < list_.count(record); ++i)
      if (!list_.isString(list_.key(record, i), "$class"_L1))
        pairs.append(list_.string(list_.key(record, i)) + u'=' + value(list_.value(record, i)));
    return value(*list_.find(record, "$class"_L1)) + u'{' + pairs.join(u", "_s) + u'}';
  }

  KeyedArchive archive_;
  const PropertyList& list_;
  QList<quint32> met_;
};

// Expects that what `archive` holds is the same after reading and writing it.
void expectUnchanged(const QByteArray& archive) {
  const Any root = read(archive);
  const QByteArray again = KeyedArchiver::archivedDataWithRootObject(root);
  EXPECT_EQ(Shape(again).text.toStdString(), Shape(archive).text.toStdString());
}

} // namespace

TEST(PlaceholderObject, KeepsEveryValueOfAnUnknownClass) {
  for (const char* file : {"probe.archive", "probe.xml.archive"}) {
    const auto probe = placeholder(goldenFile(QString::fromLatin1(file)));
    ASSERT_TRUE(probe);
    EXPECT_EQ(probe->archivedClassName(), u"Probe"_s);
    EXPECT_EQ(probe->archivedClasses(), (QStringList{u"Probe"_s, u"NSObject"_s}));
    EXPECT_TRUE(probe->archivedClassHints().isEmpty());
    EXPECT_EQ(probe->keys().size(), 18);
    EXPECT_EQ(probe->value(u"int"_s), Any(qlonglong(-5)));
    EXPECT_EQ(probe->value(u"minusOne"_s), Any(qlonglong(-1)));
    EXPECT_EQ(probe->value(u"big"_s), Any(qlonglong(705032704)));
    EXPECT_EQ(probe->value(u"int32"_s), Any(qlonglong(70000)));
    EXPECT_EQ(probe->value(u"int64"_s), Any(qlonglong(5000000000)));
    EXPECT_EQ(probe->value(u"integer"_s), Any(qlonglong(42)));
    EXPECT_EQ(probe->value(u"yes"_s), Any(true));
    EXPECT_EQ(probe->value(u"no"_s), Any(false));
    EXPECT_EQ(probe->value(u"double"_s), Any(0.1));
    EXPECT_EQ(probe->value(u"bytes"_s), Any(QByteArray("abc")));
    EXPECT_EQ(probe->value(u"point"_s), Any(u"{1, 2.5}"_s));
    EXPECT_EQ(probe->value(u"size"_s), Any(u"{100, 20}"_s));
    EXPECT_EQ(probe->value(u"rect"_s), Any(u"{{0, -1.25}, {100, 0.1}}"_s));
    EXPECT_TRUE(probe->contains(u"nil"_s));
    EXPECT_FALSE(probe->value(u"nil"_s).isValid());
    EXPECT_TRUE(probe->contains(u"conditional"_s));
    EXPECT_FALSE(probe->value(u"conditional"_s).isValid());
    EXPECT_EQ(probe->value(u"$dollar"_s), Any(u"escaped"_s));
    EXPECT_EQ(objectOf(probe->value(u"self"_s)), probe);
  }
}

TEST(PlaceholderObject, KeepsTheWidthOfAReal) {
  EXPECT_EQ(placeholder(goldenFile(u"probe.archive"_s))->value(u"float"_s).metaType(),
            QMetaType::fromType<float>());
  EXPECT_EQ(placeholder(goldenFile(u"probe.archive"_s))->value(u"float"_s).toDouble(),
            0.10000000149011612);
  EXPECT_EQ(placeholder(goldenFile(u"probe.xml.archive"_s))->value(u"float"_s), Any(0.1));
}

TEST(PlaceholderObject, IsMadeOnlyWhereAskedFor) {
  EXPECT_THROW(KeyedUnarchiver::unarchiveObjectWithData(goldenFile(u"probe.archive"_s)),
               ArchiveException);
}

TEST(PlaceholderObject, TellsValuesReferencesAndListsApart) {
  const auto object = placeholder(Table{u"$null"_s,
                                        Record{{u"inline"_s, u"text"_s},
                                               {u"reference"_s, U(2)},
                                               {u"references"_s, Table{U(2), U(3), U(0)}},
                                               {u"$class"_s, U(4)}},
                                        u"a"_s, 7, classRecord(u"X"_s)});
  EXPECT_EQ(object->form(u"inline"_s), Form::Inline);
  EXPECT_EQ(object->form(u"reference"_s), Form::Reference);
  EXPECT_EQ(object->form(u"references"_s), Form::References);
  EXPECT_EQ(object->value(u"references"_s).toList(), (QVariantList{u"a"_s, 7LL, Any()}));
  EXPECT_FALSE(object->value(u"missing"_s).isValid());
}

TEST(PlaceholderObject, KeepsValuesWithoutKeys) {
  const Table objects{u"$null"_s, Record{{u"$0"_s, U(2)}, {u"$1"_s, 5}, {u"$class"_s, U(3)}},
                      u"first"_s, classRecord(u"X"_s)};
  EXPECT_EQ(placeholder(objects)->value(u"$0"_s), Any(u"first"_s));
  expectUnchanged(binaryArchive(objects));
}

TEST(PlaceholderObject, DescribesItselfByTheArchivedClass) {
  const auto object =
      placeholder(Table{u"$null"_s, Record{{u"$class"_s, U(2)}}, classRecord(u"X"_s)});
  EXPECT_EQ(object->description(), u"<X: 0x%1>"_s.arg(QString::number(quintptr(object.get()), 16)));
}

TEST(PlaceholderObject, ArchivesBackUnchanged) {
  expectUnchanged(goldenFile(u"probe.archive"_s));
  expectUnchanged(goldenFile(u"probe.xml.archive"_s));
}

TEST(PlaceholderObject, KeepsClassListAndHints) {
  Record type = classRecord(u"X"_s, {u"%X"_s, u"Base"_s});
  type[u"$classhints"_s] = Table{u"Y"_s, u"Z"_s};
  const Table objects{u"$null"_s, Record{{u"$class"_s, U(2)}}, type};
  EXPECT_EQ(placeholder(objects)->archivedClassHints(), (QStringList{u"Y"_s, u"Z"_s}));
  expectUnchanged(binaryArchive(objects));
  expectUnchanged(
      binaryArchive({u"$null"_s, Record{{u"$class"_s, U(2)}}, Record{{u"$classname"_s, u"X"_s}}}));
}

TEST(PlaceholderObject, KeepsTheKindOfValueClassesThatAPlainValueWouldLose) {
  // An unknown object that holds one of each.
  const auto holding = [](const QString& className, Record record, const Table& more = {}) {
    record.insert(u"$class"_s, U(4));
    return binaryArchive(Table{u"$null"_s, Record{{u"held"_s, U(3)}, {u"$class"_s, U(2)}},
                               classRecord(u"X"_s), record, classRecord(className)} +
                         more);
  };
  const Record list{{u"NS.objects"_s, Table{U(5), U(5)}}};
  for (const QString& name :
       {u"NSArray"_s, u"NSMutableArray"_s, u"NSSet"_s, u"NSMutableSet"_s, u"NSOrderedSet"_s})
    expectUnchanged(holding(name, list, {u"a"_s}));
  expectUnchanged(holding(u"NSOrderedSet"_s, {{u"NS.object.0"_s, U(5)}}, {u"a"_s}));
  expectUnchanged(holding(u"NSCountedSet"_s,
                          {{u"NS.count"_s, 1}, {u"NS.object0"_s, U(5)}, {u"NS.count0"_s, 1000000}},
                          {u"a"_s}));
  const Record pairs{{u"NS.keys"_s, Table{U(5)}}, {u"NS.objects"_s, Table{U(6)}}};
  expectUnchanged(holding(u"NSDictionary"_s, pairs, {u"a"_s, 1}));
  expectUnchanged(holding(u"NSMutableDictionary"_s, pairs, {u"a"_s, 1}));
  expectUnchanged(holding(u"NSDictionary"_s, pairs, {7, 1}));
  expectUnchanged(holding(u"NSMutableString"_s, {{u"NS.string"_s, u"m"_s}}));
  expectUnchanged(holding(u"NSMutableData"_s, {{u"NS.data"_s, QByteArray("d")}}));
  expectUnchanged(holding(u"NSDate"_s, {{u"NS.time"_s, 0.123456789}}));
  expectUnchanged(
      holding(u"NSURL"_s, {{u"NS.base"_s, U(0)}, {u"NS.relative"_s, U(5)}}, {u"b c"_s}));
  expectUnchanged(holding(u"NSNull"_s, {}));
  expectUnchanged(holding(u"NSUUID"_s, {{u"NS.uuidbytes"_s, QByteArray(16, 'u')}}));
  expectUnchanged(
      holding(u"NSValue"_s, {{u"NS.special"_s, 2}, {u"NS.sizeval"_s, U(5)}}, {u"{18.0,18}"_s}));
  expectUnchanged(holding(u"NSIndexSet"_s, {{u"NSRangeCount"_s, 0}}));
  expectUnchanged(holding(u"NSLocale"_s, {{u"NS.identifier"_s, U(5)}}, {u"en_US@calendar=x"_s}));
}

TEST(PlaceholderObject, ADictionaryWithOtherKeysIsReadableOnlyAsOne) {
  const Table objects{
      u"$null"_s,
      Record{{u"NS.keys"_s, Table{U(2)}}, {u"NS.objects"_s, Table{U(3)}}, {u"$class"_s, U(4)}}, 7,
      u"seven"_s, classRecord(u"NSDictionary"_s)};
  const auto dictionary = placeholder(objects);
  ASSERT_TRUE(dictionary);
  EXPECT_EQ(dictionary->value(u"NS.keys"_s).toList(), (QVariantList{7LL}));
  EXPECT_THROW(KeyedUnarchiver::unarchiveObjectWithData(binaryArchive(objects)), ArchiveException);
}

TEST(PlaceholderObject, PlainListsAndMapsStayPlain) {
  EXPECT_EQ(
      read(KeyedArchiver::archivedDataWithRootObject(Any(QVariantList{u"a"_s, 1LL}))).toList(),
      (QVariantList{u"a"_s, 1LL}));
  EXPECT_EQ(
      read(KeyedArchiver::archivedDataWithRootObject(Any(QVariantMap{{u"a"_s, 1LL}}))).toMap(),
      (QVariantMap{{u"a"_s, 1LL}}));
}

TEST(PlaceholderObject, KnownClassesReadPlainValues) {
  // The attributes of the string are mutable dictionaries, which would stay placeholders elsewhere.
  const Any root = read(binaryArchive(
      {u"$null"_s, Record{{u"NSString"_s, U(2)}, {u"NSAttributes"_s, U(3)}, {u"$class"_s, U(6)}},
       u"abc"_s,
       Record{{u"NS.keys"_s, Table{U(4)}}, {u"NS.objects"_s, Table{U(5)}}, {u"$class"_s, U(7)}},
       u"mark"_s, 1, classRecord(u"NSAttributedString"_s),
       classRecord(u"NSMutableDictionary"_s, {u"NSDictionary"_s})}));
  EXPECT_EQ(objectOf(root)->className(), u"AttributedString"_s);
}

TEST(PlaceholderObject, CyclesEndWithTheObjectsThatEncloseThem) {
  std::weak_ptr<Object> root;
  std::weak_ptr<Object> inner;
  {
    const auto object = placeholder(
        Table{u"$null"_s, Record{{u"child"_s, U(2)}, {u"self"_s, U(1)}, {u"$class"_s, U(3)}},
              Record{{u"parent"_s, U(1)}, {u"$class"_s, U(3)}}, classRecord(u"X"_s)});
    root = object;
    const auto child = objectOf<PlaceholderObject>(object->value(u"child"_s));
    inner = child;
    EXPECT_EQ(objectOf(child->value(u"parent"_s)), object);
  }
  EXPECT_TRUE(root.expired());
  EXPECT_TRUE(inner.expired());
}

TEST(PlaceholderObject, AListThatHoldsAnObjectAroundItDoesNotOwnThatOne) {
  std::weak_ptr<Object> root;
  {
    const auto object =
        placeholder(Table{u"$null"_s, Record{{u"list"_s, U(2)}, {u"$class"_s, U(3)}},
                          Record{{u"NS.objects"_s, Table{U(1)}}, {u"$class"_s, U(4)}},
                          classRecord(u"X"_s), classRecord(u"NSArray"_s)});
    root = object;
    const auto list = objectOf<PlaceholderObject>(object->value(u"list"_s));
    ASSERT_TRUE(list);
    EXPECT_EQ(objectOf(list->value(u"NS.objects"_s).toList().at(0)), object);
  }
  EXPECT_TRUE(root.expired());
}

TEST(PlaceholderObject, AKnownObjectThatWouldOwnAnObjectAroundItIsRefused) {
  // The attributes of the text hold the object that holds the text.
  const QByteArray archive = binaryArchive(
      {u"$null"_s, Record{{u"text"_s, U(2)}, {u"$class"_s, U(7)}},
       Record{{u"NSString"_s, U(3)}, {u"NSAttributes"_s, U(4)}, {u"$class"_s, U(6)}}, u"abc"_s,
       Record{{u"NS.keys"_s, Table{U(5)}}, {u"NS.objects"_s, Table{U(1)}}, {u"$class"_s, U(8)}},
       u"owner"_s, classRecord(u"NSAttributedString"_s), classRecord(u"X"_s),
       classRecord(u"NSDictionary"_s)});
  EXPECT_THROW(read(archive), ArchiveException);
}

TEST(PlaceholderObject, CyclesArchiveBackUnchanged) {
  expectUnchanged(binaryArchive(
      {u"$null"_s, Record{{u"children"_s, U(2)}, {u"$class"_s, U(5)}},
       Record{{u"NS.objects"_s, Table{U(3), U(4)}}, {u"$class"_s, U(6)}},
       Record{{u"parent"_s, U(1)}, {u"next"_s, U(4)}, {u"list"_s, U(2)}, {u"$class"_s, U(5)}},
       Record{{u"parent"_s, U(1)}, {u"$class"_s, U(5)}}, classRecord(u"View"_s),
       classRecord(u"NSMutableArray"_s, {u"NSArray"_s})}));
}

TEST(PlaceholderObject, AValueThatIsNeitherSimpleNorAReferenceIsRefused) {
  const auto archive = [](const QVariant& value) {
    return binaryArchive(
        {u"$null"_s, Record{{u"v"_s, value}, {u"$class"_s, U(2)}}, classRecord(u"X"_s)});
  };
  EXPECT_THROW(read(archive(Record{{u"a"_s, 1}})), ArchiveException);
  EXPECT_THROW(read(archive(Table{1, 2})), ArchiveException);
}

TEST(PlaceholderObject, OtherCodersRefuseIt) {
  const auto object =
      placeholder(Table{u"$null"_s, Record{{u"$class"_s, U(2)}}, classRecord(u"X"_s)});
  SequentialArchiver archiver;
  EXPECT_THROW(archiver.encodeValue(any(object)), InvalidArgumentException);
}
