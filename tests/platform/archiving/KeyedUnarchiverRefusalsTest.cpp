// What the unarchiver refuses: classes, broken archives, and what exceeds its limits.
#include "tests/platform/archiving/unarchiver_testing.h"

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

// Class names.

TEST(KeyedUnarchiver, AnUnknownClassIsRefusedByName) {
  expectRefused({u"$null"_s, Record{{u"$class"_s, U(2)}}, classRecord(u"Probe"_s)}, "root",
                "the class Probe is unknown");
}

TEST(KeyedUnarchiver, TheListOfClassesIsNotChecked) {
  const auto root = [](const Record& type) {
    return rootOf({u"$null"_s, Record{{u"$class"_s, U(2)}}, type});
  };
  EXPECT_TRUE(objectOf<Link>(root({{u"$classname"_s, u"Link"_s}})));
  EXPECT_TRUE(objectOf<Link>(
      root({{u"$classname"_s, u"Link"_s}, {u"$classes"_s, Table{u"%Link"_s, u"Other"_s}}})));
}

TEST(KeyedUnarchiver, AKnownSuperclassDoesNotStandIn) {
  expectRefused({u"$null"_s, Record{{u"$class"_s, U(2)}}, classRecord(u"Probe"_s, {u"Link"_s})},
                "root", "Probe");
}

TEST(KeyedUnarchiver, NamesAreMappedThenHintsAreTriedThenTheHookIsAsked) {
  Record hinted = classRecord(u"Probe"_s);
  hinted[u"$classhints"_s] = Table{u"Unknown"_s, u"Link"_s};
  const Table withHints{u"$null"_s, Record{{u"$class"_s, U(2)}}, hinted};
  EXPECT_TRUE(objectOf<Link>(rootOf(withHints)));
  EXPECT_TRUE(objectOf<Decoder>(KeyedUnarchiver::unarchiveObjectWithData(
      binaryArchive(withHints), reading(u"Probe"_s, u"Decoder"_s))));

  const Table plain{u"$null"_s, Record{{u"$class"_s, U(2)}}, classRecord(u"Probe"_s, {u"Base"_s})};
  KeyedUnarchiver::Options options;
  options.substituteClassName = [](const QString& name, const QStringList& classes) {
    EXPECT_EQ(name, u"Probe"_s);
    EXPECT_EQ(classes, (QStringList{u"Probe"_s, u"Base"_s, u"NSObject"_s}));
    return u"Link"_s;
  };
  EXPECT_TRUE(
      objectOf<Link>(KeyedUnarchiver::unarchiveObjectWithData(binaryArchive(plain), options)));
}

TEST(KeyedUnarchiver, TheClassMayStandAnywhereAmongTheKeys) {
  for (const char* key : {"#before", "after"})
    EXPECT_TRUE(objectOf<Link>(
        rootOf({u"$null"_s, Record{{QString::fromLatin1(key), 1}, {u"$class"_s, U(2)}},
                classRecord(u"Link"_s)})));
}

// Broken archives.

TEST(KeyedUnarchiver, RefusesOtherVersionsAndArchivers) {
  Record archive = archiveDictionary({u"$null"_s, u"x"_s});
  archive[u"$version"_s] = 10000;
  expectRefused(binaryPropertyList(archive), "", "version");
  archive[u"$version"_s] = 100000.0;
  expectRefused(binaryPropertyList(archive), "", "$version");
  archive = archiveDictionary({u"$null"_s, u"x"_s});
  archive[u"$archiver"_s] = u"NSArchiver"_s;
  expectRefused(binaryPropertyList(archive), "", "NSArchiver");
}

TEST(KeyedUnarchiver, RefusesAnArchiveWithoutObjectsOrTop) {
  for (const char* key : {"$objects", "$top", "$archiver", "$version"}) {
    Record archive = archiveDictionary({u"$null"_s, u"x"_s});
    archive.remove(QString::fromLatin1(key));
    expectRefused(binaryPropertyList(archive), "", key);
    archive.insert(QString::fromLatin1(key), QByteArray("wrong"));
    expectRefused(binaryPropertyList(archive), "", key);
  }
}

TEST(KeyedUnarchiver, RefusesPropertyListsThatAreNoArchive) {
  expectRefused(binaryPropertyList(7), "", "not a keyed archive");
  expectRefused(binaryPropertyList(QVariantList{}), "", "not a keyed archive");
  expectRefused(binaryPropertyList(QVariantMap{}), "", "not a keyed archive");
}

TEST(KeyedUnarchiver, RefusesReferencesOutsideTheTable) {
  Record archive = archiveDictionary({u"$null"_s, u"x"_s, u"y"_s});
  archive[u"$top"_s] = Record{{u"root"_s, U(10)}};
  expectRefused(binaryPropertyList(archive), "root", "outside the table of 3");
  expectRefused({u"$null"_s, Record{{u"NS.objects"_s, Table{U(99)}}, {u"$class"_s, U(2)}},
                 classRecord(u"NSArray"_s)},
                "root[0]", "outside");
}

TEST(KeyedUnarchiver, RefusesClassesThatAreNone) {
  expectRefused({u"$null"_s, Record{{u"$class"_s, U(2)}}, u"text"_s}, "root", "class");
  expectRefused({u"$null"_s, Record{{u"$class"_s, U(9)}}}, "root", "class");
  expectRefused({u"$null"_s, Record{{u"$class"_s, u"Link"_s}}}, "root", "class");
  expectRefused({u"$null"_s, Record{{u"$class"_s, U(2)}}, Record{{u"$classes"_s, Table{}}}}, "root",
                "class");
  expectRefused({u"$null"_s, Record{{u"$class"_s, U(2)}}, Record{{u"$classname"_s, 1}}}, "root",
                "class");
  expectRefused({u"$null"_s, Record{{u"x"_s, 1}}}, "root", "without a class");
  expectRefused({u"$null"_s, classRecord(u"Link"_s)}, "root", "without a class");
}

TEST(KeyedUnarchiver, RefusesEntriesThatAreNoObjects) {
  expectRefused({u"$null"_s, Table{u"x"_s}}, "root", "no object");
  expectRefused({u"$null"_s, U(1)}, "root", "no object");
}

TEST(KeyedUnarchiver, KeyPathsLeadFromTheTopThroughListsToTheKey) {
  Decoder::decode = [](Coder& coder) { coder.decodeIntForKey("wrong"); };
  expectRefused({u"$null"_s, Record{{u"NS.objects"_s, Table{U(5), U(2)}}, {u"$class"_s, U(3)}},
                 Record{{u"wrong"_s, u"x"_s}, {u"$class"_s, U(4)}}, classRecord(u"NSArray"_s),
                 classRecord(u"Decoder"_s), u"fine"_s},
                "root[1].wrong", "integer");
  Decoder::decode = nullptr;
}

TEST(KeyedUnarchiver, TruncatedAtEveryByteAnArchiveIsRefused) {
  for (const QByteArray& file : {stringVector, primitivesVector, goldenFile(u"probe.archive"_s)})
    for (qsizetype size = 0; size < file.size(); ++size)
      EXPECT_THROW(KeyedUnarchiver::unarchiveObjectWithData(file.first(size)), ArchiveException)
          << size;
}

TEST(KeyedUnarchiver, WithAnyBitFlippedAnArchiveReadsOrRaises) {
  KeyedUnarchiver::Options options;
  options.keepUnknownClasses = true;
  for (const char* name : {"probe.archive", "attr-three-runs.archive", "shadow.archive"}) {
    const QByteArray file = goldenFile(QString::fromLatin1(name));
    int refused = 0;
    for (qsizetype bit = 0; bit < 8 * file.size(); ++bit) {
      QByteArray changed = file;
      changed[bit / 8] = char(changed[bit / 8] ^ (1 << (bit % 8)));
      try {
        KeyedUnarchiver::unarchiveObjectWithData(changed, options);
      } catch (const ArchiveException&) {
        ++refused;
      }
    }
    EXPECT_GT(refused, 100) << name;
  }
}

// Limits.

static Table chain(int length, const QString& className) {
  Table objects{u"$null"_s};
  for (int i = 1; i <= length; ++i)
    objects.append(Record{{u"me"_s, U(i < length ? quint32(i) + 1 : 0)},
                          {u"$class"_s, U(quint32(length) + 1)}});
  objects.append(classRecord(className));
  return objects;
}

TEST(KeyedUnarchiver, ObjectsMayBeNestedUpToTheDepthLimit) {
  EXPECT_TRUE(objectOf<Link>(rootOf(chain(KeyedUnarchiver::MaximumDepth, u"Link"_s))));
  EXPECT_THROW(rootOf(chain(KeyedUnarchiver::MaximumDepth + 1, u"Link"_s)), ArchiveException);
  EXPECT_THROW(rootOf(chain(100000, u"Link"_s)), ArchiveException);
}

TEST(KeyedUnarchiver, AChainDecodedFromItsEndIsLimitedToo) {
  // The list names the innermost first, so that no decoding goes deep.
  constexpr quint32 Length = 5000;
  Table objects{u"$null"_s, QVariant()};
  Table elements;
  for (quint32 i = 2; i < Length; ++i) {
    objects.append(
        Record{{u"NS.objects"_s, i == 2 ? Table{} : Table{U(i - 1)}}, {u"$class"_s, U(Length)}});
    elements.append(U(i));
  }
  objects[1] = Record{{u"NS.objects"_s, elements}, {u"$class"_s, U(Length)}};
  objects.append(classRecord(u"NSArray"_s));
  EXPECT_THROW(rootOf(objects), ArchiveException);
}

TEST(KeyedUnarchiver, ListsThatHoldOneAnotherTwiceAreRefusedBeforeTheyExplode) {
  constexpr quint32 Length = 60;
  Table objects{u"$null"_s};
  for (quint32 i = 1; i < Length; ++i)
    objects.append(
        Record{{u"NS.objects"_s, Table{U(i + 1), U(i + 1)}}, {u"$class"_s, U(Length + 1)}});
  objects.append(Record{{u"NS.objects"_s, Table{}}, {u"$class"_s, U(Length + 1)}});
  objects.append(classRecord(u"NSArray"_s));
  EXPECT_THROW(rootOf(objects), ArchiveException);
}

TEST(KeyedUnarchiver, ACountedSetIsRefusedBeforeItExplodes) {
  expectRefused({u"$null"_s,
                 Record{{u"NS.count"_s, 1},
                        {u"NS.object0"_s, U(2)},
                        {u"NS.count0"_s, qint64(1) << 60},
                        {u"$class"_s, U(3)}},
                 u"x"_s, classRecord(u"NSCountedSet"_s)},
                "root", "counts");
}

TEST(KeyedUnarchiver, ManyReferencesToALongStringShareIt) {
  Table objects{u"$null"_s, QVariant()};
  Table elements;
  for (quint32 i = 0; i < 2000; ++i) {
    objects.append(QString(100000, u'x'));
    elements.append(U(i + 2));
  }
  objects[1] = Record{{u"NS.objects"_s, elements}, {u"$class"_s, U(2002)}};
  objects.append(classRecord(u"NSArray"_s));
  // The writer keeps one string for all, so that the file is small.
  const QByteArray archive = binaryArchive(objects);
  ASSERT_LT(archive.size(), 150000);
  const QVariantList list = KeyedUnarchiver::unarchiveObjectWithData(archive).toList();
  ASSERT_EQ(list.size(), 2000);
  const auto& first = *static_cast<const QString*>(list[0].constData());
  const auto& last = *static_cast<const QString*>(list[1999].constData());
  EXPECT_EQ(first.constData(), last.constData());
}
