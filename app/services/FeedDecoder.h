// The bytes of a document as UTF-8, whatever they are encoded in.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <memory>

struct UConverter;

namespace zq::app {

// Decides the encoding by a byte-order mark, else the charset that came with the document, else the
// pattern of UTF-16's bytes, else an XML declaration, else takes UTF-8; names that nobody knows are
// passed over. What is not in the encoding becomes U+FFFD.
class FeedDecoder {
 public:
  // `charset` as the content type has it; empty where there is none.
  explicit FeedDecoder(QString charset);
  ~FeedDecoder();
  FeedDecoder(const FeedDecoder&) = delete;
  FeedDecoder& operator=(const FeedDecoder&) = delete;

  // Valid UTF-8, whole characters, without the byte-order mark. Empty while there is too little to
  // tell the encoding by.
  QByteArray add(QByteArrayView bytes);
  // What is left at the end of the document.
  QByteArray finish();

  // The name of the encoding; empty before it is decided.
  const QString& encoding() const { return encoding_; }
  // Names of encodings that were stated, but that nobody knows.
  const QStringList& unknownEncodings() const { return unknown_; }

 private:
  struct CloseConverter {
    void operator()(UConverter* converter) const;
  };

  bool decide(bool atEnd);
  bool choose(const QString& name);
  QByteArray decode(QByteArrayView bytes, bool atEnd);
  QByteArray decodeUtf8(QByteArrayView bytes, bool atEnd);
  QByteArray decodeByConverter(QByteArrayView bytes, bool atEnd);

  QString charset_;
  QString encoding_;
  QStringList unknown_;
  // Bytes that wait: for the decision, or for the rest of their character.
  QByteArray pending_;
  // For all but UTF-8.
  std::unique_ptr<UConverter, CloseConverter> converter_;
  QString pendingText_;
};

} // namespace zq::app
