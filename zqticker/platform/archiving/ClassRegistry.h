// The closed list of classes that an archive may make.
#pragma once

#include "zqticker/platform/objects/Object.h"
#include "zqticker/zqticker_export.h"

#include <QtCore/QStringList>

namespace zq::platform {

// Makes an empty object of one class, to be filled by initWithCoder.
using ObjectFactory = Ref<Object> (*)();

// Archive names and the classes behind them. Registration happens while the library or the host
// is loaded; look-up from any thread afterwards.
class ZQTICKER_EXPORT ClassRegistry {
 public:
  // Whether objects of a class may refer to one another in circles. Classes that own whatever they
  // refer to must refuse: an archive in which they did could never be freed, nor walked to its end.
  enum class Cycles { Allowed, Refused };

  struct Registration {
    ObjectFactory factory = nullptr;
    Cycles cycles = Cycles::Allowed;
  };

  // Lists `factory` under `archiveName`. A second registration of a name replaces the first.
  static void registerClass(const QString& archiveName, ObjectFactory factory,
                            Cycles cycles = Cycles::Allowed);
  // What is listed under `archiveName`; without a factory where nothing is.
  static Registration registration(const QString& archiveName);

  // The name under which a class archives: its own Q_CLASSINFO("ArchiveName"), else its class
  // name without namespace.
  static QString archiveNameOf(const QMetaObject& metaObject);
  // The archive names of a class and of its superclasses, up to "NSObject".
  static QStringList archiveClassesOf(const QMetaObject& metaObject);
};

// Lists a default-constructible class under its archive name; stands in the class's source file.
#define ZQ_REGISTER_CLASS(Class) ZQ_REGISTER_CLASS_WITH(Class, Allowed)

// The same for a class that owns what it refers to: an archive in which an object of it refers to
// itself, directly or not, is refused.
#define ZQ_REGISTER_VALUE_CLASS(Class) ZQ_REGISTER_CLASS_WITH(Class, Refused)

#define ZQ_REGISTER_CLASS_WITH(Class, cycles)                                                      \
  [[maybe_unused]] static const bool zqClassIsRegistered_##Class = [] {                            \
    ::zq::platform::ClassRegistry::registerClass(                                                  \
        ::zq::platform::ClassRegistry::archiveNameOf(Class::staticMetaObject),                     \
        []() -> ::zq::platform::Ref<::zq::platform::Object> { return std::make_shared<Class>(); }, \
        ::zq::platform::ClassRegistry::Cycles::cycles);                                            \
    return true;                                                                                   \
  }()

} // namespace zq::platform
