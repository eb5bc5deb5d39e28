#include "zqticker/platform/archiving/PlaceholderObject.h"

#include "zqticker/platform/archiving/KeyedArchive.h"
#include "zqticker/platform/archiving/KeyedArchiver.h"
#include "zqticker/platform/objects/Exception.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zq::platform {

PlaceholderObject::PlaceholderObject(QString className, QStringList classes, QStringList hints)
    : className_(std::move(className)), classes_(std::move(classes)), hints_(std::move(hints)) {}
PlaceholderObject::~PlaceholderObject() = default;

QStringList PlaceholderObject::keys() const {
  QStringList keys;
  for (const Field& field : fields_)
    keys.append(KeyedArchive::unescapedKey(field.key));
  return keys;
}

const PlaceholderObject::Field* PlaceholderObject::field(const QString& key) const {
  const auto found = std::find_if(fields_.begin(), fields_.end(), [&](const Field& candidate) {
    return KeyedArchive::unescapedKey(candidate.key) == key;
  });
  return found == fields_.end() ? nullptr : &*found;
}

bool PlaceholderObject::contains(const QString& key) const {
  return field(key) != nullptr;
}

PlaceholderObject::Form PlaceholderObject::form(const QString& key) const {
  const Field* found = field(key);
  return found ? found->form : Form::Inline;
}

Any PlaceholderObject::value(const QString& key) const {
  const Field* found = field(key);
  if (!found)
    return {};
  switch (found->form) {
  case Form::Inline:
    return found->inlineValue;
  case Form::Reference:
    return found->references.front().get();
  case Form::References:
    break;
  }
  QVariantList values;
  for (const Reference& reference : found->references)
    values.append(reference.get());
  return values;
}

QString PlaceholderObject::description() const {
  return "<"_L1 + className_ + ": 0x"_L1 + QString::number(quintptr(this), 16) + ">"_L1;
}

void PlaceholderObject::encodeWithCoder(Coder& coder) {
  auto* archiver = dynamic_cast<KeyedArchiver*>(&coder);
  if (!archiver)
    throw InvalidArgumentException(u"an object of the unknown class %1 goes into keyed archives "
                                   "only"_s.arg(className_));
  archiver->encodeFieldsOf(*this);
}

} // namespace zq::platform
