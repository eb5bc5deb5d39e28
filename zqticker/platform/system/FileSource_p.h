// Files as answers.
#pragma once

#include "zqticker/platform/system/URLSource_p.h"

#include <QtCore/QByteArray>
#include <QtCore/QObject>

#include <sys/types.h>

namespace zq::platform {

// Reads a regular file piece by piece, one for each turn of the event loop. Other kinds of files,
// which could block or never end, fail, as do addresses with the name of another host.
class FileSource final : public QObject, public URLSource {
 public:
  FileSource(const QUrl& url, URLSourceClient& client);
  ~FileSource() override;

 protected:
  bool event(QEvent* event) override;

 private:
  // Both tell the client, and return whether there is more to read.
  bool open();
  bool readPiece();
  void fail(int code, const QString& text);
  // For what is there but no regular file.
  void failForKind(mode_t mode);
  void failWithErrno(int error);

  QUrl url_;
  // As the file system spells it.
  QByteArray path_;
  URLSourceClient& client_;
  int descriptor_ = -1;
  QByteArray buffer_;
};

} // namespace zq::platform
