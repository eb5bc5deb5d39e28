#include "app/commands/ArchiveTree.h"

#include "zqticker/platform/archiving/IndexSet.h"
#include "zqticker/platform/archiving/number_text.h"
#include "zqticker/platform/archiving/seven_bit_groups.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/Shadow.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/text/AttributedString.h"

#include <QtCore/QDateTime>
#include <QtCore/QLocale>
#include <QtCore/QMargins>
#include <QtCore/QUrl>
#include <QtCore/QUuid>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace zq::app {

namespace {

using Kind = PropertyList::Kind;

// What a value of the output counts as, in bytes.
constexpr qint64 ValueBytes = 16;

KeyedUnarchiver::Options keepingOptions() {
  KeyedUnarchiver::Options options;
  options.keepUnknownClasses = true;
  options.convertNumbers = true;
  return options;
}

bool isListClass(const QString& name) {
  static const QStringList names{
      u"NSArray"_s,      u"NSMutableArray"_s,      u"NSSet"_s,        u"NSMutableSet"_s,
      u"NSOrderedSet"_s, u"NSMutableOrderedSet"_s, u"NSDictionary"_s, u"NSMutableDictionary"_s};
  return names.contains(name);
}

bool isPlainClass(const QString& name) {
  static const QStringList names{u"NSString"_s,
                                 u"NSMutableString"_s,
                                 u"NSData"_s,
                                 u"NSMutableData"_s,
                                 u"NSNumber"_s,
                                 u"NSDecimalNumber"_s,
                                 u"NSDate"_s,
                                 u"NSDecimalNumberPlaceholder"_s,
                                 u"NSURL"_s,
                                 u"NSUUID"_s,
                                 u"NSValue"_s,
                                 u"NSIndexSet"_s,
                                 u"NSMutableIndexSet"_s,
                                 u"NSLocale"_s};
  return names.contains(name);
}

OutputValue numbers(std::initializer_list<double> values) {
  OutputValue list = OutputValue::list();
  for (const double value : values)
    list.append(OutputValue::real(value));
  return list;
}

OutputValue rangeValue(Range range) {
  OutputValue output = OutputValue::map();
  output.insert(u"location"_s, OutputValue::integer(range.location));
  output.insert(u"length"_s, OutputValue::integer(range.length));
  return output;
}

OutputValue colorValue(const Ref<Color>& color) {
  if (!color)
    return {};
  OutputValue output = OutputValue::map();
  output.insert(u"space"_s, OutputValue::string(color->description().section(u' ', 0, 0)));
  if (color->space() == Color::Space::Catalog) {
    output.insert(u"catalog"_s, OutputValue::string(color->catalogName()));
    output.insert(u"name"_s, OutputValue::string(color->colorName()));
  }
  OutputValue components = OutputValue::list();
  for (const double component : color->components())
    components.append(OutputValue::real(component));
  output.insert(u"components"_s, components);
  output.insert(u"red"_s, OutputValue::real(color->redComponent()));
  output.insert(u"green"_s, OutputValue::real(color->greenComponent()));
  output.insert(u"blue"_s, OutputValue::real(color->blueComponent()));
  output.insert(u"alpha"_s, OutputValue::real(color->alphaComponent()));
  return output;
}

} // namespace

// A step of the path that messages name.
class ArchiveTree::Step {
 public:
  Step(ArchiveTree& tree, const QString& name) : path_(tree.path_) { path_.append(name); }
  ~Step() { path_.removeLast(); }
  Step(const Step&) = delete;
  Step& operator=(const Step&) = delete;

 private:
  QStringList& path_;
};

ArchiveTree::ArchiveTree(const QByteArray& data)
    : values_(data), objects_(data, keepingOptions()), archive_(values_.archive()),
      list_(archive_.list()),
      budget_(list_.sourceSize() * MaximumExpansionFactor + ExpansionAllowance) {}

void ArchiveTree::fail(const QString& reason) const {
  throw ArchiveException(reason, path_.join(u'.'));
}

void ArchiveTree::charge(qint64 bytes) {
  budget_ -= bytes;
  if (budget_ < 0)
    fail(u"the archive expands to more than its size allows"_s);
}

OutputValue ArchiveTree::top() {
  OutputValue output = OutputValue::map();
  const Index top = archive_.top();
  for (quint32 i = 0; i < list_.count(top); ++i) {
    const QString key = KeyedArchive::unescapedKey(list_.string(list_.key(top, i)));
    Step step(*this, key);
    output.insert(key, value(list_.value(top, i)));
  }
  if (deeper_.empty())
    return output;
  OutputValue deeper = OutputValue::list();
  while (!deeper_.empty()) {
    const quint32 uid = deeper_.back();
    deeper_.pop_back();
    Step step(*this, u"#%1"_s.arg(uid));
    if (!seen_.contains(uid))
      deeper.append(record(uid));
  }
  output.insert(u"$deeper"_s, deeper);
  return output;
}

quint32 ArchiveTree::checkedUid(Index reference) const {
  if (list_.kind(reference) != Kind::Uid)
    fail(u"expected a reference to an object"_s);
  const quint32 uid = list_.uid(reference);
  if (uid >= archive_.objectCount())
    fail(u"the reference %1 leads outside the table of %2 objects"_s.arg(uid).arg(
        archive_.objectCount()));
  return uid;
}

OutputValue ArchiveTree::value(Index index) {
  return list_.kind(index) == Kind::Uid ? reference(index) : inlineValue(index);
}

OutputValue ArchiveTree::string(const QString& text) {
  charge(text.size());
  return OutputValue::string(text);
}

OutputValue ArchiveTree::data(Index index) {
  const QByteArray bytes = list_.data(index);
  charge(bytes.size());
  OutputValue output = OutputValue::map();
  output.insert(u"$hex"_s, OutputValue::string(QString::fromLatin1(bytes.toHex())));
  // Colour components and the like are text, with or without a NUL at the end.
  const QByteArray text = bytes.endsWith('\0') ? bytes.chopped(1) : bytes;
  if (!text.isEmpty() &&
      std::all_of(text.begin(), text.end(), [](char c) { return c >= 0x20 && c < 0x7F; }))
    output.insert(u"$text"_s, OutputValue::string(QString::fromLatin1(text)));
  return output;
}

OutputValue ArchiveTree::inlineValue(Index index) {
  charge(ValueBytes);
  switch (list_.kind(index)) {
  case Kind::Boolean:
    return OutputValue::boolean(list_.boolean(index));
  case Kind::Integer:
    return list_.isUnsigned(index) ? OutputValue::unsignedInteger(quint64(list_.integer(index)))
                                   : OutputValue::integer(list_.integer(index));
  case Kind::Real:
    return OutputValue::real(list_.real(index));
  case Kind::Date: {
    OutputValue output = OutputValue::map();
    output.insert(u"$secondsSince2001"_s, OutputValue::real(list_.real(index)));
    return output;
  }
  case Kind::Data:
    return data(index);
  case Kind::String:
    return string(list_.string(index));
  case Kind::Array:
  case Kind::Set:
    return elements(index);
  case Kind::Dictionary: {
    OutputValue output = OutputValue::map();
    for (quint32 i = 0; i < list_.count(index); ++i) {
      const QString key = list_.string(list_.key(index, i));
      Step step(*this, key);
      output.insert(key, value(list_.value(index, i)));
    }
    return output;
  }
  case Kind::Uid:
    break;
  }
  return reference(index);
}

OutputValue ArchiveTree::elements(Index array) {
  OutputValue output = OutputValue::list();
  for (quint32 i = 0; i < list_.count(array); ++i) {
    Step step(*this, QString::number(i));
    output.append(value(list_.element(array, i)));
  }
  return output;
}

OutputValue ArchiveTree::reference(Index index) {
  charge(ValueBytes);
  const quint32 uid = checkedUid(index);
  if (uid == 0)
    return {};
  switch (archive_.entry(uid)) {
  case KeyedArchive::Entry::Nothing:
    return {};
  case KeyedArchive::Entry::String:
  case KeyedArchive::Entry::Number:
  case KeyedArchive::Entry::Data:
  case KeyedArchive::Entry::Date:
    return inlineValue(archive_.object(uid));
  case KeyedArchive::Entry::Record:
    break;
  case KeyedArchive::Entry::Class:
  case KeyedArchive::Entry::Invalid:
    fail(u"the entry %1 is no object"_s.arg(uid));
  }
  const bool isDeep = depth_ >= MaximumDepth;
  if (!isDeep && !seen_.contains(uid))
    return record(uid);
  if (isDeep && !seen_.contains(uid))
    deeper_.push_back(uid);
  OutputValue output = OutputValue::map();
  output.insert(u"$ref"_s, OutputValue::integer(uid));
  return output;
}

OutputValue ArchiveTree::record(quint32 uid) {
  seen_.insert(uid);
  const Index index = archive_.object(uid);
  KeyedArchive::Class type;
  try {
    type = archive_.classAt(archive_.classUidOf(index));
  } catch (const ArchiveException& exception) {
    fail(exception.reason());
  }
  ++depth_;
  OutputValue output = OutputValue::map();
  output.insert(u"$class"_s, string(type.name));
  OutputValue classes = OutputValue::list();
  for (const QString& name : type.classes)
    classes.append(string(name));
  output.insert(u"$classes"_s, classes);
  if (!type.hints.isEmpty()) {
    OutputValue hints = OutputValue::list();
    for (const QString& name : type.hints)
      hints.append(string(name));
    output.insert(u"$classhints"_s, hints);
  }
  output.insert(u"$id"_s, OutputValue::integer(uid));
  const bool isShown =
      isListClass(type.name) ? addContents(output, index) : addMeaning(output, uid, type.name);
  for (quint32 i = 0; !isShown && i < list_.count(index); ++i) {
    const QString raw = list_.string(list_.key(index, i));
    if (raw == "$class"_L1)
      continue;
    const QString key = KeyedArchive::unescapedKey(raw);
    Step step(*this, key);
    // A key that would be taken for one of the printer's own stays as it is in the file.
    output.insert(output.find(key) ? raw : key, value(list_.value(index, i)));
  }
  --depth_;
  return output;
}

// Adds the contents of a list or a dictionary; false where it is not of the usual form.
bool ArchiveTree::addContents(OutputValue& output, Index record) {
  const auto objects = list_.find(record, "NS.objects"_L1);
  const auto keys = list_.find(record, "NS.keys"_L1);
  if (!objects || list_.kind(*objects) != Kind::Array)
    return false;
  if (!keys) {
    for (quint32 i = 0; i < list_.count(*objects); ++i)
      checkedUid(list_.element(*objects, i));
    output.insert(u"$elements"_s, elements(*objects));
    return true;
  }
  if (list_.kind(*keys) != Kind::Array || list_.count(*keys) != list_.count(*objects))
    fail(u"a dictionary has not as many keys as objects"_s);
  output.insert(u"$entries"_s, entries(record, *keys, *objects));
  return true;
}

OutputValue ArchiveTree::entries(Index, Index keys, Index objects) {
  QStringList names;
  for (quint32 i = 0; i < list_.count(keys); ++i) {
    const quint32 uid = checkedUid(list_.element(keys, i));
    if (archive_.entry(uid) == KeyedArchive::Entry::String)
      names.append(list_.string(archive_.object(uid)));
  }
  // Keys of other classes make a list of pairs.
  const bool isMap = quint32(names.size()) == list_.count(keys);
  OutputValue output = isMap ? OutputValue::map() : OutputValue::list();
  for (quint32 i = 0; i < list_.count(keys); ++i) {
    const Index object = list_.element(objects, i);
    Step step(*this, isMap ? names[i] : QString::number(i));
    checkedUid(object);
    if (isMap) {
      charge(names[i].size());
      output.insert(names[i], reference(object));
    } else {
      OutputValue pair = OutputValue::map();
      pair.insert(u"key"_s, reference(list_.element(keys, i)));
      pair.insert(u"value"_s, reference(object));
      output.append(pair);
    }
  }
  return output;
}

// Adds what a record of a known class means; false for other classes.
bool ArchiveTree::addMeaning(OutputValue& output, quint32 uid, const QString& className) {
  const Index index = archive_.object(uid);
  if (isPlainClass(className))
    output.insert(u"$value"_s, plainValue(decoded(values_, uid)));
  else if (className == "NSColor"_L1)
    output.insert(u"$value"_s, color(uid));
  else if (className == "NSFont"_L1)
    output.insert(u"$value"_s, font(uid));
  else if (className == "NSShadow"_L1)
    output.insert(u"$value"_s, shadow(uid, index));
  else if (className == "NSAttributedString"_L1 || className == "NSMutableAttributedString"_L1 ||
           className == "NSTextStorage"_L1)
    output.insert(u"$value"_s, attributedString(uid, index));
  else
    return false;
  return true;
}

// The decoder's key paths begin at the object.
Any ArchiveTree::decoded(KeyedUnarchiver& unarchiver, quint32 uid) const {
  try {
    return unarchiver.decodeObjectAt(uid);
  } catch (const ArchiveException& exception) {
    const QString inner = exception.keyPath();
    if (inner.isEmpty())
      fail(exception.reason());
    throw ArchiveException(exception.reason().mid(inner.size() + 2),
                           QStringList(path_ + QStringList{inner}).join(u'.'));
  }
}

OutputValue ArchiveTree::plainValue(const Any& value) {
  switch (value.typeId()) {
  case QMetaType::QString:
    return string(value.toString());
  case QMetaType::QByteArray: {
    const QByteArray bytes = value.toByteArray();
    charge(bytes.size());
    OutputValue output = OutputValue::map();
    output.insert(u"$hex"_s, OutputValue::string(QString::fromLatin1(bytes.toHex())));
    return output;
  }
  case QMetaType::Bool:
    return OutputValue::boolean(value.toBool());
  case QMetaType::LongLong:
    return OutputValue::integer(value.toLongLong());
  case QMetaType::ULongLong:
    return OutputValue::unsignedInteger(value.toULongLong());
  case QMetaType::Float:
  case QMetaType::Double:
    return OutputValue::real(value.toDouble());
  case QMetaType::QDateTime:
    return OutputValue::string(value.toDateTime().toString(Qt::ISODateWithMs));
  case QMetaType::QUrl:
    return string(value.toUrl().toString(QUrl::FullyEncoded));
  case QMetaType::QUuid:
    return OutputValue::string(value.toUuid().toString(QUuid::WithoutBraces));
  case QMetaType::QLocale:
    return OutputValue::string(value.toLocale().name());
  case QMetaType::QPointF:
    return OutputValue::string(textOfPoint(value.toPointF()));
  case QMetaType::QSizeF:
    return OutputValue::string(textOfSize(value.toSizeF()));
  case QMetaType::QRectF:
    return OutputValue::string(textOfRect(value.toRectF()));
  default:
    break;
  }
  if (value.canConvert<Range>())
    return rangeValue(value.value<Range>());
  if (value.canConvert<QMarginsF>()) {
    const auto margins = value.value<QMarginsF>();
    OutputValue output = OutputValue::map();
    output.insert(u"top"_s, OutputValue::real(margins.top()));
    output.insert(u"left"_s, OutputValue::real(margins.left()));
    output.insert(u"bottom"_s, OutputValue::real(margins.bottom()));
    output.insert(u"right"_s, OutputValue::real(margins.right()));
    return output;
  }
  OutputValue output = OutputValue::list();
  for (const Range& range : value.value<IndexSet>().ranges)
    output.append(rangeValue(range));
  return output;
}

OutputValue ArchiveTree::color(quint32 uid) {
  return colorValue(objectOf<Color>(decoded(objects_, uid)));
}

OutputValue ArchiveTree::font(quint32 uid) {
  const auto font = objectOf<Font>(decoded(objects_, uid));
  if (!font)
    return {};
  OutputValue output = OutputValue::map();
  output.insert(u"name"_s, string(font->fontName()));
  output.insert(u"size"_s, OutputValue::real(font->pointSize()));
  return output;
}

OutputValue ArchiveTree::shadow(quint32 uid, Index record) {
  const auto shadow = objectOf<Shadow>(decoded(objects_, uid));
  if (!shadow)
    return {};
  OutputValue output = OutputValue::map();
  output.insert(u"offset"_s,
                numbers({shadow->shadowOffset().width(), shadow->shadowOffset().height()}));
  output.insert(u"blurRadius"_s, OutputValue::real(shadow->shadowBlurRadius()));
  const auto color = list_.find(record, "NSShadowColor"_L1);
  output.insert(u"color"_s, color ? reference(*color) : colorValue(shadow->shadowColor()));
  return output;
}

// One dictionary of attributes, wherever else it may stand.
OutputValue ArchiveTree::attributes(Index index) {
  const quint32 uid = checkedUid(index);
  const Index record = archive_.object(uid);
  if (archive_.entry(uid) == KeyedArchive::Entry::Record) {
    const auto keys = list_.find(record, "NS.keys"_L1);
    const auto objects = list_.find(record, "NS.objects"_L1);
    if (keys && objects && list_.kind(*keys) == Kind::Array &&
        list_.kind(*objects) == Kind::Array && list_.count(*keys) == list_.count(*objects))
      return entries(record, *keys, *objects);
  }
  return reference(index);
}

OutputValue ArchiveTree::attributedString(quint32 uid, Index record) {
  const auto text = objectOf<AttributedString>(decoded(objects_, uid));
  if (!text)
    return {};
  OutputValue runs = OutputValue::list();
  const auto addRun = [&](qsizetype location, qsizetype length, std::optional<Index> dictionary) {
    charge(ValueBytes);
    OutputValue run = rangeValue({location, length});
    run.insert(u"attributes"_s, dictionary ? attributes(*dictionary) : OutputValue::map());
    runs.append(run);
  };
  // Decoding has checked all of this.
  const auto dictionaries = list_.find(record, "NSAttributes"_L1);
  const auto info = list_.find(record, "NSAttributeInfo"_L1);
  const QByteArray lengths =
      info ? decoded(objects_, checkedUid(*info)).toByteArray() : QByteArray();
  qsizetype covered = 0;
  if (!info && dictionaries && text->length() > 0) {
    addRun(0, text->length(), dictionaries);
    covered = text->length();
  }
  for (qsizetype at = 0; covered < text->length() && at < lengths.size();) {
    const auto length = takeSevenBitGroups(lengths, at);
    const auto number = takeSevenBitGroups(lengths, at);
    const auto list = list_.find(archive_.object(checkedUid(*dictionaries)), "NS.objects"_L1);
    if (!length || !number || !list || quint64(*number) >= list_.count(*list))
      fail(u"the runs of an attributed string are not of the usual form"_s);
    addRun(covered, *length, list_.element(*list, quint32(*number)));
    covered += *length;
  }
  if (covered < text->length())
    addRun(covered, text->length() - covered, std::nullopt);
  OutputValue output = OutputValue::map();
  output.insert(u"string"_s, string(text->string()));
  output.insert(u"runs"_s, runs);
  return output;
}

} // namespace zq::app
