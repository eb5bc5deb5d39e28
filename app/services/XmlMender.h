// XML as feeds write it, turned into XML that a strict reader takes.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QHash>
#include <QtCore/QString>

namespace zq::app {

// Stands before the reader, so that the common mistakes of feeds do not end them and that the
// reader meets nothing that takes more time or memory than the document is worth:
//
//   - "&" and "<" that begin nothing, and ">" in text, are escaped;
//   - characters that XML does not allow are left out, as bytes and as references;
//   - HTML's entities are replaced, entities that nobody declared stand for their own spelling;
//   - the XML declaration, comments, processing instructions and the document type are left out,
//     their line ends are not. Of the document type plain entities are taken; an entity that refers
//     to others is an error where it is used, an external one is empty;
//   - the length of a tag and the number of its attributes are limited, and so is what entities of
//     the document grow to.
class XmlMender {
 public:
  // Mends valid UTF-8 in whole characters. Empty after an error, and behind the
  // document type of a page.
  QByteArray add(QByteArrayView text);

  // Empty, or what was met, after the text that went before it.
  const QString& errorText() const { return error_; }
  // Whether the document type is that of HTML. Then nothing is read behind it.
  bool isPage() const { return isPage_; }

 private:
  enum class State {
    Text,
    Opening,
    Tag,
    Value,
    Section,
    Comment,
    Instruction,
    Declaration,
    DocumentType,
    Reference,
  };

  const char* readText(const char* from, const char* end);
  const char* readOpening(const char* from);
  const char* readAmpersand(const char* from, const char* end);
  void beginTag();
  const char* readTag(const char* from, const char* end);
  const char* readValue(const char* from, const char* end);
  const char* readSection(const char* from, const char* end);
  const char* readDropped(const char* from, const char* end);
  const char* readDocumentType(const char* from);
  const char* readReference(const char* from);

  const char* readSpecial(const char* from);
  void replace(const char* from, const char* to, QByteArrayView text);
  void endDocumentType();
  void declareEntities(QByteArrayView documentType);
  QByteArray resolvedReference();
  void fail(const QString& error);

  QByteArray output_;
  // Where what is copied as it is begins; most of a document is copied in one.
  const char* run_ = nullptr;
  State state_ = State::Text;
  // Where a reference stands: in text or in an attribute's value.
  State stateAfterReference_ = State::Text;
  // Markup or a reference that is not whole yet.
  QByteArray pending_;
  // The quote of the value, in tags and in the document type.
  char quote_ = 0;
  qsizetype tagLength_ = 0;
  int attributes_ = 0;
  // Of "]]>", "-->" or "?>", what has been read.
  int endProgress_ = 0;
  // Whether a tag has been opened; a document type stands before that.
  bool hasRoot_ = false;
  bool inSubset_ = false;
  bool inComment_ = false;
  bool isPage_ = false;
  // What entities of the document stand for.
  struct Entity {
    QByteArray text;
    bool refersToOthers = false;
  };
  QHash<QByteArray, Entity> entities_;
  qsizetype expandedBytes_ = 0;
  QString error_;
};

} // namespace zq::app
