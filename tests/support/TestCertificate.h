// A certificate and its key for a server on this host, signed by an authority of their own, made
// when asked for.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QTemporaryDir>

#include <vector>

namespace zq::testing {

class TestCertificate {
 public:
  // For the given names and addresses, such as "DNS:localhost" and "IP:127.0.0.1".
  explicit TestCertificate(const std::vector<QByteArray>& names = {"DNS:localhost",
                                                                   "IP:127.0.0.1"});

  // In PEM form.
  const QByteArray& certificate() const { return certificate_; }
  const QByteArray& key() const { return key_; }

  // A file with the authority's certificate, which lives as long as this object: a client that is
  // told of it trusts the server.
  QString authorityFile() const;

 private:
  QByteArray certificate_;
  QByteArray key_;
  QTemporaryDir folder_;
};

} // namespace zq::testing
