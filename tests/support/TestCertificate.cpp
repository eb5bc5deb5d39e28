#include "tests/support/TestCertificate.h"

#include <QtCore/QFile>

#include <openssl/bio.h>
#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <memory>
#include <stdexcept>

namespace zq::testing {

namespace {

struct Free {
  void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
  void operator()(X509* certificate) const { X509_free(certificate); }
  void operator()(X509_EXTENSION* extension) const { X509_EXTENSION_free(extension); }
  void operator()(BIO* memory) const { BIO_free(memory); }
};
using Key = std::unique_ptr<EVP_PKEY, Free>;
using Certificate = std::unique_ptr<X509, Free>;

void check(bool done) {
  if (!done)
    throw std::runtime_error("a test certificate could not be made");
}

Key makeKey() {
  Key key(EVP_EC_gen("P-256"));
  check(key != nullptr);
  return key;
}

void addExtension(X509* certificate, X509* issuer, int kind, const QByteArray& value) {
  X509V3_CTX context;
  X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
  std::unique_ptr<X509_EXTENSION, Free> extension(
      X509V3_EXT_conf_nid(nullptr, &context, kind, value.constData()));
  check(extension && X509_add_ext(certificate, extension.get(), -1) == 1);
}

// A certificate of `key` for `name`, valid from an hour ago for a day; without an issuer it is the
// certificate of an authority.
Certificate makeCertificate(EVP_PKEY* key, const char* name, long serial, X509* issuer,
                            EVP_PKEY* issuerKey, const QByteArray& alternativeNames) {
  Certificate certificate(X509_new());
  X509* x509 = certificate.get();
  check(X509_set_version(x509, X509_VERSION_3) == 1);
  ASN1_INTEGER_set(X509_get_serialNumber(x509), serial);
  X509_gmtime_adj(X509_getm_notBefore(x509), -3600);
  X509_gmtime_adj(X509_getm_notAfter(x509), 86400);
  check(X509_set_pubkey(x509, key) == 1);
  X509_NAME* subject = X509_get_subject_name(x509);
  check(X509_NAME_add_entry_by_txt(subject, "CN", MBSTRING_UTF8,
                                   reinterpret_cast<const unsigned char*>(name), -1, -1, 0) == 1);
  check(X509_set_issuer_name(x509, issuer ? X509_get_subject_name(issuer) : subject) == 1);
  X509* signer = issuer ? issuer : x509;
  addExtension(x509, signer, NID_basic_constraints, issuer ? "CA:FALSE" : "critical,CA:TRUE");
  addExtension(x509, signer, NID_subject_key_identifier, "hash");
  if (issuer) {
    addExtension(x509, signer, NID_authority_key_identifier, "keyid");
    addExtension(x509, signer, NID_subject_alt_name, alternativeNames);
  } else {
    addExtension(x509, signer, NID_key_usage, "critical,keyCertSign,cRLSign");
  }
  check(X509_sign(x509, issuerKey, EVP_sha256()) != 0);
  return certificate;
}

QByteArray contents(BIO* memory) {
  char* data = nullptr;
  const long length = BIO_get_mem_data(memory, &data);
  return QByteArray(data, length);
}

QByteArray pem(X509* certificate) {
  std::unique_ptr<BIO, Free> memory(BIO_new(BIO_s_mem()));
  check(PEM_write_bio_X509(memory.get(), certificate) == 1);
  return contents(memory.get());
}

QByteArray pem(EVP_PKEY* key) {
  std::unique_ptr<BIO, Free> memory(BIO_new(BIO_s_mem()));
  check(PEM_write_bio_PrivateKey(memory.get(), key, nullptr, nullptr, 0, nullptr, nullptr) == 1);
  return contents(memory.get());
}

} // namespace

TestCertificate::TestCertificate(const std::vector<QByteArray>& names) {
  const Key authorityKey = makeKey();
  const Certificate authority = makeCertificate(authorityKey.get(), "Authority of a test", 1,
                                                nullptr, authorityKey.get(), {});
  const Key key = makeKey();
  QByteArray alternativeNames;
  for (const QByteArray& name : names)
    alternativeNames += (alternativeNames.isEmpty() ? "" : ",") + name;
  const Certificate certificate = makeCertificate(key.get(), "Server of a test", 2, authority.get(),
                                                  authorityKey.get(), alternativeNames);
  certificate_ = pem(certificate.get());
  key_ = pem(key.get());
  QFile file(authorityFile());
  const QByteArray text = pem(authority.get());
  check(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
}

QString TestCertificate::authorityFile() const {
  return folder_.filePath(QStringLiteral("authority.pem"));
}

} // namespace zq::testing
