// Files that a command writes: complete, or not there.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <memory>
#include <vector>

class QFileDevice;

namespace zq::app {

// Writes `bytes` to the file `path` named by `option` ("--output"): under a temporary name beside
// it, then renamed. What is no plain file (a device, a pipe) is written directly. RunTimeError
// naming option and file where that fails; a file that was there before is unchanged then.
void writeOutputFile(const QString& option, const QString& path, const QByteArray& bytes);

// The same for several files that belong together: none is renamed before all are written.
struct OutputFile {
  QString path;
  QByteArray bytes;
};
void writeOutputFiles(const QString& option, const std::vector<OutputFile>& files);

// The same in steps, for what grows: the file that is written in the place of `path` once it is
// opened, and its end, which puts it there; false, with the file's error, where that fails. Without
// an end nothing has happened to what stood there.
std::unique_ptr<QFileDevice> outputFileAt(const QString& path);
bool finishOutputFile(QFileDevice& file);

// Writes `bytes` to standard output and flushes it. RunTimeError where that fails.
void writeStandardOutput(const QByteArray& bytes);

// RunTimeError where the program was started without a standard output.
void requireStandardOutput();

} // namespace zq::app
