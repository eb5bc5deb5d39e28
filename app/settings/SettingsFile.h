// The file that settings are kept in.
#pragma once

#include <QtCore/QJsonObject>
#include <QtCore/QString>

#include <functional>

namespace zq::app {

// A JSON object in a file, changed by several programs at a time. It knows no settings: whatever
// stands in the file and is not changed stays there.
//
// Thread: any, one object on one thread at a time; objects of several threads or processes may
// stand for the same file.
class SettingsFile {
 public:
  // A larger file is no settings file.
  static constexpr qint64 LargestFile = 1 << 20;

  // What was read.
  struct Contents {
    QJsonObject object;    // empty where there is no file, or none that can be read
    QString problem;       // empty where there is none: "cannot read: Permission denied"
    bool isBroken = false; // it can be read, but is not a JSON object
  };

  // `path` is absolute. Nothing is read yet, and the file need not be there.
  explicit SettingsFile(QString path) : path_(std::move(path)) {}

  const QString& path() const { return path_; }

  // A file that is empty is an empty object.
  Contents read() const;

  // Reads, lets `change` have its way with the object and writes it, while no other program that
  // keeps to the file's lock does the same. The file is complete afterwards, or as it was. A broken
  // one is kept aside first, under its name and ".broken-" with the time. Folders are made.
  // RunTimeError where that cannot be done.
  void change(const std::function<void(QJsonObject&)>& change);

  // Keeps a file aside that is broken still, and returns its new path; empty where it could not be
  // renamed, or is broken no more.
  QString keepAside();

 private:
  class Lock;

  QString renameBroken() const;

  QString path_;
};

} // namespace zq::app
