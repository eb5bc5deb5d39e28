// A plain file that others append to.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <memory>
#include <optional>

#include <sys/types.h>

namespace zq::app {

// Why there is nothing to read at a path.
struct TailProblem {
  int error = 0; // errno value
  QString text;

  bool isMissing() const;
  bool isNone() const { return text.isEmpty(); }
  friend bool operator==(const TailProblem&, const TailProblem&) = default;
};

// Holds the file open, whatever becomes of its name, and remembers how far it has been read and
// what stood just before that place.
//
// Thread: any, one at a time. No function waits for a writer.
class TailFile {
 public:
  // Tells files apart as long as one of them is open.
  struct Identity {
    dev_t device;
    ino_t inode;
    friend bool operator==(const Identity&, const Identity&) = default;
  };

  // Of what is at `path`; nothing where that cannot be told.
  static std::optional<Identity> identityAt(const QByteArray& path);
  // The file at `path`, to be read from its start. Null, and why in `problem`, where there is none
  // and for anything but a plain file, which is not even opened.
  static std::unique_ptr<TailFile> open(const QByteArray& path, TailProblem& problem);
  ~TailFile();
  TailFile(const TailFile&) = delete;
  TailFile& operator=(const TailFile&) = delete;

  const Identity& identity() const { return identity_; }
  qint64 size() const; // bytes; 0 where the file does not say
  bool isDeleted() const;

  // The place up to which the file has been read.
  qint64 place() const { return place_; }
  bool hasMore() const { return size() > place_; }
  void moveTo(qint64 place);
  // At most `most` bytes from the place on, which moves behind them. Empty at the end of the file,
  // and where it cannot be read.
  QByteArray read(qint64 most);
  // Bytes anywhere in the file, fewer at its end; nothing where it cannot be read.
  std::optional<QByteArray> bytesAt(qint64 place, qint64 count) const;

  // Whether the file has become shorter than what was read of it, or holds something else just
  // before the place: it was emptied and filled again.
  bool isAnotherText() const;

 private:
  TailFile(int descriptor, const Identity& identity);
  void setPassed(const QByteArray& bytes);

  int descriptor_;
  Identity identity_;
  qint64 place_ = 0;
  QByteArray passed_; // the bytes just before the place
};

} // namespace zq::app
