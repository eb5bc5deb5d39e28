#include "tests/platform/archiving/unarchiver_testing.h"

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

// The examples of the format.

TEST(KeyedUnarchiver, ReadsAString) {
  EXPECT_EQ(KeyedUnarchiver::unarchiveObjectWithData(stringVector), Any(u"hello"_s));
}

TEST(KeyedUnarchiver, ReadsPrimitives) {
  Decoder::decode = [](Coder& coder) {
    EXPECT_EQ(coder.decodeIntForKey("i"), -5);
    EXPECT_TRUE(coder.decodeBoolForKey("b"));
    EXPECT_EQ(coder.decodeDoubleForKey("f"), 0.5);
    EXPECT_TRUE(coder.containsValueForKey("n"));
    EXPECT_FALSE(coder.decodeObjectForKey("n").isValid());
    EXPECT_FALSE(coder.containsValueForKey("x"));
    EXPECT_EQ(coder.decodeIntForKey("x"), 0);
  };
  EXPECT_TRUE(
      KeyedUnarchiver::unarchiveObjectWithData(primitivesVector, reading(u"T"_s, u"Decoder"_s))
          .isValid());
  Decoder::decode = nullptr;
}

TEST(KeyedUnarchiver, ReadsXml) {
  const QByteArray xml = R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict>
<key>$archiver</key><string>NSKeyedArchiver</string>
<key>$version</key><integer>100000</integer>
<key>$objects</key><array><string>$null</string><string>hello</string></array>
<key>$top</key><dict><key>root</key><dict><key>CF$UID</key><integer>1</integer></dict></dict>
</dict></plist>
)";
  EXPECT_EQ(KeyedUnarchiver::unarchiveObjectWithData(xml), Any(u"hello"_s));
}

TEST(KeyedUnarchiver, ReadsPointsSizesAndRects) {
  decodeRecord({{u"size"_s, U(3)}, {u"point"_s, U(4)}, {u"rect"_s, U(5)}},
               [](Coder& coder) {
                 EXPECT_EQ(coder.decodeSizeForKey("size"), QSizeF(100, 20));
                 EXPECT_EQ(coder.decodePointForKey("point"), QPointF(1, 2.5));
                 EXPECT_EQ(coder.decodeRectForKey("rect"), QRectF(0, -1.25, 100, 0.5));
               },
               {u"{100, 20}"_s, u"{1, 2.5}"_s, u"{{0, -1.25}, {100, 0.5}}"_s});
}

TEST(KeyedUnarchiver, MissingGeometryIsZero) {
  decodeRecord({{u"nil"_s, U(0)}}, [](Coder& coder) {
    EXPECT_EQ(coder.decodeSizeForKey("x"), QSizeF(0, 0));
    EXPECT_EQ(coder.decodePointForKey("x"), QPointF());
    EXPECT_EQ(coder.decodeRectForKey("x"), QRectF());
    EXPECT_EQ(coder.decodeSizeForKey("nil"), QSizeF(0, 0));
    EXPECT_EQ(coder.decodePointForKey("nil"), QPointF());
    EXPECT_EQ(coder.decodeRectForKey("nil"), QRectF());
  });
}

TEST(KeyedUnarchiver, GeometryMustBeAReferenceToAString) {
  decodeRecord({{u"inline"_s, u"{1, 2}"_s}, {u"number"_s, U(3)}},
               [](Coder& coder) {
                 expectRaises("root.inline", "reference",
                              [&] { coder.decodePointForKey("inline"); });
                 expectRaises("root.number", "string", [&] { coder.decodeSizeForKey("number"); });
                 expectRaises("root.number", "string", [&] { coder.decodeRectForKey("number"); });
               },
               {7});
}

// What each decoder accepts.

TEST(KeyedUnarchiver, BooleansMayBeNumbers) {
  decodeRecord({{u"t"_s, true},
                {u"f"_s, false},
                {u"2"_s, 2},
                {u"0"_s, 0},
                {u"r"_s, 0.5},
                {u"z"_s, 0.0},
                {u"uid"_s, U(0)}},
               [](Coder& coder) {
                 EXPECT_TRUE(coder.decodeBoolForKey("t"));
                 EXPECT_FALSE(coder.decodeBoolForKey("f"));
                 EXPECT_TRUE(coder.decodeBoolForKey("2"));
                 EXPECT_FALSE(coder.decodeBoolForKey("0"));
                 EXPECT_TRUE(coder.decodeBoolForKey("r"));
                 EXPECT_FALSE(coder.decodeBoolForKey("z"));
                 EXPECT_FALSE(coder.decodeBoolForKey("missing"));
                 expectRaises("root.uid", "boolean", [&] { coder.decodeBoolForKey("uid"); });
               });
}

TEST(KeyedUnarchiver, IntegersMayBeBooleans) {
  decodeRecord({{u"b"_s, true}, {u"i"_s, 70000}, {u"l"_s, qint64(5000000000)}}, [](Coder& coder) {
    EXPECT_EQ(coder.decodeIntForKey("b"), 1);
    EXPECT_EQ(coder.decodeInt64ForKey("b"), 1);
    EXPECT_EQ(coder.decodeIntForKey("i"), 70000);
    EXPECT_EQ(coder.decodeInt64ForKey("l"), 5000000000);
    EXPECT_EQ(coder.decodeIntForKey("missing"), 0);
    EXPECT_EQ(coder.decodeInt64ForKey("missing"), 0);
  });
}

TEST(KeyedUnarchiver, AnIntegerOutside32BitsIsARangeError) {
  decodeRecord({{u"above"_s, qint64(2147483648)},
                {u"below"_s, qint64(-2147483649)},
                {u"wide"_s, qint64(4294967296)},
                {u"last"_s, qint64(2147483647)},
                {u"first"_s, qint64(-2147483648)}},
               [](Coder& coder) {
                 for (const char* key : {"above", "below", "wide"})
                   expectRaises(qPrintable(u"root."_s + QLatin1StringView(key)), "32 bits",
                                [&] { coder.decodeIntForKey(key); });
                 EXPECT_EQ(coder.decodeIntForKey("last"), 2147483647);
                 EXPECT_EQ(coder.decodeIntForKey("first"), -2147483647 - 1);
               });
}

TEST(KeyedUnarchiver, AnIntegerFrom2To63IsARangeError) {
  decodeRecord({{u"u"_s, quint64(1) << 63}}, [](Coder& coder) {
    expectRaises("root.u", "64 bits", [&] { coder.decodeInt64ForKey("u"); });
  });
}

TEST(KeyedUnarchiver, RealsOfEitherWidthAreRead) {
  decodeRecord(
      {{u"d"_s, 0.1}, {u"f"_s, 0.5F}, {u"big"_s, 1e300}, {u"small"_s, -1e300}}, [](Coder& coder) {
        EXPECT_EQ(coder.decodeDoubleForKey("d"), 0.1);
        EXPECT_EQ(coder.decodeFloatForKey("d"), 0.1F);
        EXPECT_EQ(coder.decodeDoubleForKey("f"), 0.5);
        EXPECT_EQ(coder.decodeFloatForKey("big"), std::numeric_limits<float>::infinity());
        EXPECT_EQ(coder.decodeFloatForKey("small"), -std::numeric_limits<float>::infinity());
        EXPECT_EQ(coder.decodeDoubleForKey("missing"), 0);
        EXPECT_EQ(coder.decodeFloatForKey("missing"), 0);
      });
}

TEST(KeyedUnarchiver, AnIntegerForARealIsAnErrorAndTheReverseToo) {
  decodeRecord({{u"i"_s, 1}, {u"r"_s, 1.0}, {u"b"_s, true}}, [](Coder& coder) {
    expectRaises("root.i", "real", [&] { coder.decodeDoubleForKey("i"); });
    expectRaises("root.i", "real", [&] { coder.decodeFloatForKey("i"); });
    expectRaises("root.b", "real", [&] { coder.decodeDoubleForKey("b"); });
    expectRaises("root.r", "integer", [&] { coder.decodeIntForKey("r"); });
    expectRaises("root.r", "integer", [&] { coder.decodeInt64ForKey("r"); });
  });
}

TEST(KeyedUnarchiver, NumbersConvertWhereAskedFor) {
  KeyedUnarchiver::Options options;
  options.convertNumbers = true;
  decodeRecord(
      {{u"i"_s, 3}, {u"r"_s, -2.9}, {u"b"_s, true}, {u"huge"_s, 1e30}, {u"nan"_s, qQNaN()}},
      [](Coder& coder) {
        EXPECT_EQ(coder.decodeDoubleForKey("i"), 3);
        EXPECT_EQ(coder.decodeFloatForKey("b"), 1);
        EXPECT_EQ(coder.decodeIntForKey("r"), -2);
        expectRaises("root.huge", "64 bits", [&] { coder.decodeInt64ForKey("huge"); });
        expectRaises("root.nan", "64 bits", [&] { coder.decodeIntForKey("nan"); });
      },
      {}, options);
}

TEST(KeyedUnarchiver, ScalarsOfOtherKindsAreErrors) {
  decodeRecord({{u"s"_s, u"1"_s}, {u"d"_s, QByteArray("1")}, {u"u"_s, U(0)}}, [](Coder& coder) {
    for (const char* key : {"s", "d", "u"}) {
      const QByteArray path = QByteArray("root.") + key;
      expectRaises(path.constData(), "integer", [&] { coder.decodeIntForKey(key); });
      expectRaises(path.constData(), "real", [&] { coder.decodeDoubleForKey(key); });
      expectRaises(path.constData(), "boolean", [&] { coder.decodeBoolForKey(key); });
    }
    expectRaises("root.s", "data", [&] { coder.decodeBytesForKey("s"); });
    expectRaises("root.u", "data", [&] { coder.decodeBytesForKey("u"); });
  });
}

TEST(KeyedUnarchiver, BytesAreInlineData) {
  decodeRecord({{u"d"_s, QByteArray("a\0b", 3)}}, [](Coder& coder) {
    EXPECT_EQ(coder.decodeBytesForKey("d"), QByteArray("a\0b", 3));
    EXPECT_TRUE(coder.decodeBytesForKey("missing").isEmpty());
  });
}

TEST(KeyedUnarchiver, AnObjectMustBeAReference) {
  decodeRecord({{u"s"_s, u"text"_s}, {u"i"_s, 1}, {u"d"_s, QByteArray("x")}}, [](Coder& coder) {
    for (const char* key : {"s", "i", "d"})
      expectRaises(qPrintable(u"root."_s + QLatin1StringView(key)), "reference",
                   [&] { coder.decodeObjectForKey(key); });
  });
}

TEST(KeyedUnarchiver, ANilThatWasEncodedIsPresent) {
  decodeRecord({{u"nil"_s, U(0)}}, [](Coder& coder) {
    EXPECT_TRUE(coder.containsValueForKey("nil"));
    EXPECT_FALSE(coder.decodeObjectForKey("nil").isValid());
    EXPECT_EQ(coder.decodeStringForKey("nil"), std::nullopt);
    EXPECT_FALSE(coder.containsValueForKey("missing"));
    EXPECT_FALSE(coder.decodeObjectForKey("missing").isValid());
  });
}

TEST(KeyedUnarchiver, TypedDecodersNameTheWrongClass) {
  decodeRecord({{u"n"_s, U(3)}, {u"s"_s, U(4)}},
               [](Coder& coder) {
                 expectRaises("root.n", "NSString", [&] { coder.decodeStringForKey("n"); });
                 expectRaises("root.s", "NSData", [&] { coder.decodeDataForKey("s"); });
                 expectRaises("root.s", "Link", [&] { coder.decodeObjectOfClass<Link>("s"); });
               },
               {7, u"text"_s});
}

TEST(KeyedUnarchiver, ATypedRootCannotBeMissingOrOfAnotherClass) {
  const QByteArray text = KeyedArchiver::archivedDataWithRootObject(Any(u"text"_s));
  const QByteArray nothing = KeyedArchiver::archivedDataWithRootObject(Any());
  expectRaises("root", "Link", [&] { KeyedUnarchiver::unarchiveObjectOfClass<Link>(text); });
  expectRaises("root", "Link", [&] { KeyedUnarchiver::unarchiveObjectOfClass<Link>(nothing); });
}

TEST(KeyedUnarchiver, KeysAreFoundInAnyOrderAndAgain) {
  decodeRecord({{u"a"_s, 1}, {u"b"_s, 2}, {u"c"_s, 3}, {u"ü"_s, 4}}, [](Coder& coder) {
    EXPECT_EQ(coder.decodeIntForKey("c"), 3);
    EXPECT_EQ(coder.decodeIntForKey("a"), 1);
    EXPECT_EQ(coder.decodeIntForKey("b"), 2);
    EXPECT_EQ(coder.decodeIntForKey("b"), 2);
    EXPECT_EQ(coder.decodeIntForKey(u"a"), 1);
    EXPECT_EQ(coder.decodeIntForKey("c"_L1), 3);
    EXPECT_EQ(coder.decodeIntForKey("ü"), 4);
    EXPECT_EQ(coder.decodeIntForKey(u"ü"), 4);
    EXPECT_EQ(coder.decodeIntForKey(""), 0);
    EXPECT_FALSE(coder.containsValueForKey("A"));
  });
}

TEST(KeyedUnarchiver, AKeyThatBeginsWithADollarHasOneMoreInTheFile) {
  decodeRecord({{u"$$x"_s, U(3)}, {u"$$class"_s, 5}},
               [](Coder& coder) {
                 EXPECT_EQ(coder.decodeStringForKey("$x"), u"v"_s);
                 EXPECT_EQ(coder.decodeStringForKey(u"$x"), u"v"_s);
                 EXPECT_EQ(coder.decodeIntForKey("$class"), 5);
                 EXPECT_FALSE(coder.containsValueForKey("$$x"));
                 EXPECT_FALSE(coder.containsValueForKey("x"));
               },
               {u"v"_s});
}

TEST(KeyedUnarchiver, RecordsDoNotShareTheirKeys) {
  decodeRecord({{u"own"_s, 1}}, [](Coder& coder) {
    EXPECT_TRUE(coder.containsValueForKey("own"));
    EXPECT_FALSE(coder.containsValueForKey("root"));
  });
}

TEST(KeyedUnarchiver, ReadsValuesOfTheTopLevel) {
  Record archive = archiveDictionary({u"$null"_s, u"text"_s});
  archive[u"$top"_s] = Record{{u"IB.objectdata"_s, U(1)}, {u"IB.systemFontUpdateVersion"_s, 1}};
  KeyedUnarchiver unarchiver(binaryPropertyList(archive));
  EXPECT_TRUE(unarchiver.allowsKeyedCoding());
  EXPECT_EQ(unarchiver.decodeStringForKey("IB.objectdata"), u"text"_s);
  EXPECT_EQ(unarchiver.decodeIntForKey("IB.systemFontUpdateVersion"), 1);
}

TEST(KeyedUnarchiver, WithoutARootTheRootIsNothing) {
  Record archive = archiveDictionary({u"$null"_s});
  archive[u"$top"_s] = Record{};
  EXPECT_FALSE(KeyedUnarchiver::unarchiveObjectWithData(binaryPropertyList(archive)).isValid());
}

TEST(KeyedUnarchiver, RefusesToEncode) {
  KeyedUnarchiver unarchiver(stringVector);
  expectRaises("x", "does not encode", [&] { unarchiver.encodeInt(1, "x"); });
  expectRaises("x", "does not encode", [&] { unarchiver.encodeObject(Any(), "x"); });
  EXPECT_THROW(unarchiver.decodeValue(), InvalidArgumentException);
}

// Identity, cycles, conditional objects.

TEST(KeyedUnarchiver, TheSameReferenceIsTheSameObject) {
  const Any root =
      rootOf({u"$null"_s, Record{{u"NS.objects"_s, Table{U(2), U(3), U(2)}}, {u"$class"_s, U(4)}},
              Record{{u"$class"_s, U(5)}}, Record{{u"$class"_s, U(5)}}, classRecord(u"NSArray"_s),
              classRecord(u"Link"_s)});
  const QVariantList list = root.toList();
  ASSERT_EQ(list.size(), 3);
  EXPECT_TRUE(objectOf(list[0]));
  EXPECT_EQ(objectOf(list[0]), objectOf(list[2]));
  EXPECT_NE(objectOf(list[0]), objectOf(list[1]));
}

TEST(KeyedUnarchiver, ReadsAnArrayWithASharedElement) {
  EXPECT_EQ(
      rootOf({u"$null"_s, Record{{u"NS.objects"_s, Table{U(2), U(3), U(2)}}, {u"$class"_s, U(4)}},
              u"a"_s, u"b"_s, classRecord(u"NSArray"_s)})
          .toList(),
      (QVariantList{u"a"_s, u"b"_s, u"a"_s}));
}

TEST(KeyedUnarchiver, AnObjectMayReferToItself) {
  const auto link = objectOf<Link>(
      rootOf({u"$null"_s, Record{{u"me"_s, U(1)}, {u"$class"_s, U(2)}}, classRecord(u"Link"_s)}));
  ASSERT_TRUE(link);
  EXPECT_EQ(link->me.lock(), link);
}

TEST(KeyedUnarchiver, AnObjectThatOwnsWhatItRefersToMayNot) {
  expectRefused(
      {u"$null"_s, Record{{u"me"_s, U(1)}, {u"$class"_s, U(2)}}, classRecord(u"OwningLink"_s)},
      "root.me", "contains itself");
  expectRefused({u"$null"_s, Record{{u"me"_s, U(2)}, {u"$class"_s, U(3)}},
                 Record{{u"me"_s, U(1)}, {u"$class"_s, U(3)}}, classRecord(u"OwningLink"_s)},
                "root.me.me", "contains itself");
}

TEST(KeyedUnarchiver, ListsAndMapsThatContainThemselvesAreRefused) {
  expectRefused({u"$null"_s, Record{{u"NS.objects"_s, Table{U(1)}}, {u"$class"_s, U(2)}},
                 classRecord(u"NSArray"_s)},
                "root[0]", "contains itself");
  expectRefused({u"$null"_s, Record{{u"NS.objects"_s, Table{U(2)}}, {u"$class"_s, U(3)}},
                 Record{{u"NS.objects"_s, Table{U(1)}}, {u"$class"_s, U(3)}},
                 classRecord(u"NSArray"_s)},
                "root[0][0]", "contains itself");
  expectRefused(
      {u"$null"_s,
       Record{{u"NS.keys"_s, Table{U(2)}}, {u"NS.objects"_s, Table{U(1)}}, {u"$class"_s, U(3)}},
       u"me"_s, classRecord(u"NSDictionary"_s)},
      "root[0]", "contains itself");
}

TEST(KeyedUnarchiver, AListMayReferToAnObjectThatHoldsIt) {
  // The object decides what it keeps of the list.
  decodeRecord(
      {{u"list"_s, U(3)}},
      [](Coder& coder) {
        const QVariantList list = coder.decodeObjectForKey("list").toList();
        ASSERT_EQ(list.size(), 1);
        EXPECT_EQ(objectOf(list.at(0))->className(), u"Decoder"_s);
      },
      {Record{{u"NS.objects"_s, Table{U(1)}}, {u"$class"_s, U(4)}}, classRecord(u"NSArray"_s)});
}

TEST(KeyedUnarchiver, AListMayNotReferToAnObjectThatOwnsIt) {
  expectRefused({u"$null"_s, Record{{u"me"_s, U(2)}, {u"$class"_s, U(3)}},
                 Record{{u"NS.objects"_s, Table{U(1)}}, {u"$class"_s, U(4)}},
                 classRecord(u"OwningLink"_s), classRecord(u"NSArray"_s)},
                "root.me[0]", "contains itself");
}

TEST(KeyedUnarchiver, AConditionalObjectThatIsNowhereElseIsNothingAndPresent) {
  decodeRecord({{u"owner"_s, U(3)}},
               [](Coder& coder) {
                 EXPECT_TRUE(coder.containsValueForKey("owner"));
                 EXPECT_FALSE(coder.decodeObjectForKey("owner").isValid());
               },
               {u"$null"_s});
}

TEST(KeyedUnarchiver, ASubstituteTakesTheObjectsPlaceEverywhere) {
  Substituted::substitute = std::make_shared<Link>();
  const QVariantList list =
      rootOf({u"$null"_s, Record{{u"NS.objects"_s, Table{U(2), U(2)}}, {u"$class"_s, U(3)}},
              Record{{u"$class"_s, U(4)}}, classRecord(u"NSArray"_s),
              classRecord(u"Substituted"_s)})
          .toList();
  EXPECT_EQ(objectOf(list[0]), Substituted::substitute);
  EXPECT_EQ(objectOf(list[1]), Substituted::substitute);
  Substituted::substitute = nullptr;
}

TEST(KeyedUnarchiver, AnObjectThatDecodesToNothingFails) {
  Substituted::substitute = nullptr;
  expectRefused({u"$null"_s, Record{{u"$class"_s, U(2)}}, classRecord(u"Substituted"_s)}, "root",
                "could not be decoded");
}

TEST(KeyedUnarchiver, AnObjectThatHasFailedFailsAgain) {
  Decoder::decode = [](Coder& coder) { coder.decodeIntForKey("wrong"); };
  Record archive = archiveDictionary(
      {u"$null"_s, Record{{u"wrong"_s, u"x"_s}, {u"$class"_s, U(2)}}, classRecord(u"Decoder"_s)});
  archive[u"$top"_s] = Record{{u"a"_s, U(1)}, {u"b"_s, U(1)}};
  KeyedUnarchiver unarchiver(binaryPropertyList(archive));
  expectRaises("a.wrong", "integer", [&] { unarchiver.decodeObjectForKey("a"); });
  expectRaises("b", "could not be decoded", [&] { unarchiver.decodeObjectForKey("b"); });
  Decoder::decode = nullptr;
}

TEST(KeyedUnarchiver, OtherExceptionsOfADecodingObjectPassThrough) {
  Decoder::decode = [](Coder&) { throw RangeException(u"mine"_s); };
  EXPECT_THROW(rootOf({u"$null"_s, Record{{u"$class"_s, U(2)}}, classRecord(u"Decoder"_s)}),
               RangeException);
  Decoder::decode = nullptr;
}
