#include "zqticker/platform/objects/Error.h"

using namespace Qt::StringLiterals;

namespace zq::platform {

Error::Error(const QString& domain, int code, const QString& localizedDescription,
             const QUrl& failingURL)
    : domain_(domain), code_(code), localizedDescription_(localizedDescription),
      failingURL_(failingURL) {}

Ref<Error> Error::make(const QString& domain, int code, const QString& localizedDescription,
                       const QUrl& failingURL) {
  return Ref<Error>(new Error(domain, code, localizedDescription, failingURL));
}

QString Error::description() const {
  return u"Error Domain=%1 Code=%2 \"%3\""_s.arg(domain_, QString::number(code_),
                                                 localizedDescription_);
}

bool Error::isEqual(const Object& other) const {
  const auto* error = dynamic_cast<const Error*>(&other);
  return error && domain_ == error->domain_ && code_ == error->code_ &&
         localizedDescription_ == error->localizedDescription_ && failingURL_ == error->failingURL_;
}

} // namespace zq::platform
