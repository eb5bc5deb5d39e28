// Objects of unknown classes, kept as they stand in the archive.
#pragma once

#include "zqticker/platform/objects/Object.h"
#include "zqticker/zqticker_export.h"

#include <QtCore/QStringList>

#include <memory>
#include <vector>

namespace zq::platform {

// An object whose class nobody registered: its class and all its values by key. It archives back
// with the same class, keys and values. KeyedUnarchiver makes it where asked to keep such objects.
//
// A reference to an object that encloses this one does not own it, so that cycles end: it reads as
// nothing once the enclosing object has gone.
class ZQTICKER_EXPORT PlaceholderObject : public Object {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "")

 public:
  // How a value stands in the record: as it is, as one reference, or as a list of references.
  enum class Form { Inline, Reference, References };

  PlaceholderObject(QString className, QStringList classes, QStringList hints);
  ~PlaceholderObject() override;

  // The class name in the archive, its list of classes (it may be empty), and the classes that the
  // archive names as stand-ins.
  const QString& archivedClassName() const { return className_; }
  const QStringList& archivedClasses() const { return classes_; }
  const QStringList& archivedClassHints() const { return hints_; }

  // The keys in their order, as the object knows them. Values written without a key have the keys
  // "$0", "$1" and so on.
  QStringList keys() const;
  bool contains(const QString& key) const;
  Form form(const QString& key) const;
  // An Inline value as bool, qlonglong, qulonglong, float, double, QByteArray, QString or
  // QDateTime; a Reference as decodeObjectForKey gives it; References as a QVariantList. Nothing
  // where there is no such key.
  Any value(const QString& key) const;

  // "<ClassName: 0xaddress>" with the archived class name.
  QString description() const override;
  // Writes the record as it was. Raises InvalidArgumentException for any other coder than a
  // KeyedArchiver.
  void encodeWithCoder(Coder& coder) override;

 private:
  friend class KeyedArchiverState;
  friend class KeyedUnarchiverState;
  struct Reference {
    Any owned;
    std::weak_ptr<Object> enclosing;
    Any get() const { return owned.isValid() ? owned : any(enclosing.lock()); }
  };
  struct Field {
    // As in the archive, with its $ doubled.
    QString key;
    Form form;
    Any inlineValue;
    std::vector<Reference> references;
  };
  const Field* field(const QString& key) const;

  QString className_;
  QStringList classes_;
  QStringList hints_;
  std::vector<Field> fields_;
};

} // namespace zq::platform
