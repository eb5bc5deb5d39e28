// The classes of rollover buttons, each with a look that its buttons share.
#pragma once

#include "zqticker/zqticker_export.h"

#include <QtCore/QString>
#include <QtCore/QUrl>
#include <QtCore/qobjectdefs.h>

#include <memory>
#include <type_traits>

class ZQRollOverButtonAppearance;

namespace zq {

// Says of a rollover button of which class it is. It is a virtual base, so that the constructor of
// the class itself, and of none above it, states it:
//
//     class PlayButton : public ZQRollOverButton {
//       Q_OBJECT
//      public:
//       explicit PlayButton(QWidget* parent = nullptr)
//           : RollOverButtonClass(this), ZQRollOverButton(parent) {}
//     };
//
// A class that does not state it, or that lacks Q_OBJECT and with it a name, does not compile.
//
// Thread: main.
class ZQTICKER_EXPORT RollOverButtonClass {
 protected:
  // What the buttons of one class share; the same for the life of the process.
  struct Record;
  // Where the appearance of the class called `className` is read from.
  using DataURL = QUrl (*)(const QString& className);

  // The first use of a class, this one included, loads its appearance, and raises what that raises.
  template <class Class>
  explicit RollOverButtonClass(const Class*) : record_(&recordOf<Class>()) {}
  RollOverButtonClass(const RollOverButtonClass&) = delete;
  RollOverButtonClass& operator=(const RollOverButtonClass&) = delete;
  ~RollOverButtonClass() = default;

  template <class Class>
  static Record& recordOf() {
    static_assert(std::is_same_v<decltype(&Class::qt_metacall),
                                 int (Class::*)(QMetaObject::Call, int, void**)>,
                  "a class of rollover buttons needs Q_OBJECT: its name leads to its appearance");
    return recordOf(Class::staticMetaObject,
                    [](const QString& className) { return Class::appearanceDataURL(className); });
  }
  static std::shared_ptr<ZQRollOverButtonAppearance> appearanceOf(const Record& record);
  // Raises InvalidArgumentException for null.
  static void setAppearanceOf(Record& record,
                              std::shared_ptr<ZQRollOverButtonAppearance> appearance);

  const Record& record() const { return *record_; }

 private:
  static Record& recordOf(const QMetaObject& metaObject, DataURL appearanceDataURL);

  const Record* const record_;
};

} // namespace zq
