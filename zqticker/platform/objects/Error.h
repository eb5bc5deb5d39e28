// Failures that are handed on as objects instead of raised.
#pragma once

#include "zqticker/platform/objects/Object.h"

#include <QtCore/QUrl>

namespace zq::platform {

// What went wrong: a domain, a code within it, and a text for people. Never changes once made.
class ZQTICKER_EXPORT Error : public Object {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSError")

 public:
  // `localizedDescription` is one line without a full stop; `failingURL` is empty where no address
  // is concerned.
  static Ref<Error> make(const QString& domain, int code, const QString& localizedDescription,
                         const QUrl& failingURL = QUrl());

  const QString& domain() const { return domain_; }
  int code() const { return code_; }
  const QString& localizedDescription() const { return localizedDescription_; }
  const QUrl& failingURL() const { return failingURL_; }

  // "Error Domain=… Code=… "the text"".
  QString description() const override;

  // Equal are errors with the same domain, code, text and address.
  bool isEqual(const Object& other) const override;

 private:
  Error(const QString& domain, int code, const QString& localizedDescription,
        const QUrl& failingURL);

  QString domain_;
  int code_;
  QString localizedDescription_;
  QUrl failingURL_;
};

} // namespace zq::platform
