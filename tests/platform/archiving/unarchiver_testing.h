// What the tests of the unarchiver share: classes to decode, and refusals to expect.
#pragma once

#include "tests/platform/archiving/ArchiveBuilder.h"
#include "zqticker/platform/archiving/ClassRegistry.h"
#include "zqticker/platform/archiving/KeyedArchiver.h"
#include "zqticker/platform/archiving/KeyedUnarchiver.h"
#include "zqticker/platform/objects/Exception.h"

#include <gtest/gtest.h>

#include <functional>

namespace zq::testing {

using namespace Qt::StringLiterals;
using namespace zq::platform;

// An object whose decoding is what the running test says.
class Decoder : public Object {
  Q_GADGET
  ZQ_OBJECT

 public:
  static inline std::function<void(Coder&)> decode;

  Ref<Object> initWithCoder(Coder& coder) override {
    if (decode)
      decode(coder);
    return shared_from_this();
  }
};
ZQ_REGISTER_CLASS(Decoder);

// Refers to another object under "me".
class Link : public Object {
  Q_GADGET
  ZQ_OBJECT

 public:
  void encodeWithCoder(Coder& coder) override {
    coder.encodeObject(any(strong ? strong : me.lock()), "me");
  }
  Ref<Object> initWithCoder(Coder& coder) override {
    const Ref<Object> object = objectOf(coder.decodeObjectForKey("me"));
    me = object;
    if (object.get() != this)
      strong = object;
    return shared_from_this();
  }
  std::weak_ptr<Object> me;
  Ref<Object> strong;
};
ZQ_REGISTER_CLASS(Link);

// The same, but owning what it refers to.
class OwningLink : public Link {
  Q_GADGET
  ZQ_OBJECT
};
ZQ_REGISTER_VALUE_CLASS(OwningLink);

// Gives another object in its place.
class Substituted : public Object {
  Q_GADGET
  ZQ_OBJECT

 public:
  static inline Ref<Object> substitute;
  Ref<Object> initWithCoder(Coder&) override { return substitute; }
};
ZQ_REGISTER_CLASS(Substituted);

inline Any rootOf(const Table& objects) {
  return KeyedUnarchiver::unarchiveObjectWithData(binaryArchive(objects));
}

// Decodes `record` of class Decoder by `decode`, from the binary and from the XML form.
inline void decodeRecord(Record record, const std::function<void(Coder&)>& decode,
                         const Table& moreObjects = {},
                         const KeyedUnarchiver::Options& options = {}) {
  record.insert(u"$class"_s, U(2));
  const Table objects = Table{u"$null"_s, record, classRecord(u"Decoder"_s)} + moreObjects;
  for (const QByteArray& archive : {binaryArchive(objects), xmlArchive(objects)}) {
    int decoded = 0;
    Decoder::decode = [&](Coder& coder) {
      ++decoded;
      decode(coder);
    };
    KeyedUnarchiver::unarchiveObjectWithData(archive, options);
    Decoder::decode = nullptr;
    EXPECT_EQ(decoded, 1);
  }
}

// Expects that `action` raises with this key path and these words.
template <class Action>
void expectRaises(const char* keyPath, const char* words, Action action) {
  try {
    action();
    ADD_FAILURE() << "nothing raised; expected: " << words;
  } catch (const ArchiveException& exception) {
    EXPECT_EQ(exception.keyPath().toStdString(), keyPath) << exception.what();
    EXPECT_TRUE(exception.reason().contains(QString::fromUtf8(words))) << exception.what();
  }
}

inline void expectRefused(const QByteArray& archive, const char* keyPath, const char* words) {
  expectRaises(keyPath, words, [&] { KeyedUnarchiver::unarchiveObjectWithData(archive); });
}

inline void expectRefused(const Table& objects, const char* keyPath, const char* words) {
  expectRefused(binaryArchive(objects), keyPath, words);
  expectRefused(xmlArchive(objects), keyPath, words);
}

inline QByteArray vector(const char* digits) {
  return QByteArray::fromHex(digits);
}

inline const QByteArray stringVector =
    vector("62706c6973743030d4010203040506090a582476657273696f6e58246f626a65"
           "637473592461726368697665725424746f7012000186a0a2070855246e756c6c"
           "5568656c6c6f5f100f4e534b657965644172636869766572d10b0c54726f6f74"
           "800108111a232d32373a4046585b600000000000000101000000000000000d00"
           "000000000000000000000000000062");

inline const QByteArray primitivesVector =
    vector("62706c6973743030d4010203040506191a582476657273696f6e58246f626a65"
           "637473592461726368697665725424746f7012000186a0a307081355246e756c"
           "6cd5090a0b0c0d0e0f1011125624636c617373516951625166516e800213ffff"
           "fffffffffffb09233fe00000000000008000d2141516175a24636c6173736e61"
           "6d655824636c61737365735154a21618584e534f626a6563745f100f4e534b65"
           "7965644172636869766572d11b1c54726f6f74800108111a232d32373b414c53"
           "5557595b5d6667707277828b8d9099abaeb30000000000000101000000000000"
           "001d000000000000000000000000000000b5");

inline KeyedUnarchiver::Options reading(const QString& name, const QString& as) {
  KeyedUnarchiver::Options options;
  options.classNames = {{name, as}};
  return options;
}

} // namespace zq::testing
