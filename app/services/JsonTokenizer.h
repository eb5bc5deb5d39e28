// JSON token by token, as its bytes arrive.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace zq::app {

// Reads one JSON value from UTF-8 in pieces of any size. Holds the open lists and objects, a bit
// each, and the text of one token: Qt's reader, which takes a whole document and makes a tree of
// it, needs the document and many times its size. Line ends and tabs inside strings are taken,
// although they should be escaped.
class JsonTokenizer {
 public:
  // What is told of the tokens. A name is followed by its value.
  class Receiver {
   public:
    virtual ~Receiver() = default;
    virtual void beginObject() = 0;
    virtual void endObject() = 0;
    virtual void beginList() = 0;
    virtual void endList() = 0;
    virtual void name(const QString& name) = 0;
    // A string, or a number as it is written.
    virtual void text(const QString& text) = 0;
    // true, false or null.
    virtual void other() = 0;
    // Whether the rest need not be read.
    virtual bool isDone() const = 0;
  };

  // `longestText` in bytes: of a longer string the rest is passed over.
  JsonTokenizer(Receiver& receiver, int deepest, qsizetype longestText);

  // Reads on; without effect after the end of the value, an error, and once the receiver is done.
  void add(QByteArrayView text);

  // Whether the value has ended.
  bool isAtEnd() const { return state_ == State::End; }
  // Empty, or what is wrong in one line.
  const QString& errorText() const { return error_; }
  // The line that has been read up to, from 1.
  qint64 line() const { return line_; }

 private:
  enum class State {
    Value,
    FirstElement, // or the end of the list
    FirstName,    // or the end of the object
    Name,
    Colon,
    AfterValue,
    String,
    Escape,
    Unicode,
    Number,
    End,
  };

  const char* readString(const char* from, const char* end);
  bool readCharacter(char c);
  bool beginValue(char c);
  void beginContainer(char kind);
  void endContainer(char kind);
  void readAfterValue(char c);
  void readEscape(char c);
  void readUnicode(char c);
  void endString();
  void endPlain();
  void endValue();
  void appendUnit(char16_t unit);
  void flushUnit();
  void append(QByteArrayView text);
  void unexpected(char c);
  void fail(const QString& what);

  Receiver& receiver_;
  qsizetype deepest_;
  qsizetype longestText_;
  State state_ = State::Value;
  // The open containers: '{' or '['.
  QByteArray open_;
  QByteArray token_;
  bool isName_ = false;
  // Of an escape by number: its digits, and a surrogate that waits for its other half.
  int digits_ = 0;
  char16_t unit_ = 0;
  char16_t highSurrogate_ = 0;
  qint64 line_ = 1;
  QString error_;
};

} // namespace zq::app
