#include "app/services/TailFollower.h"

#include <QtCore/QFile>
#include <QtCore/QLoggingCategory>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace zq::app {

namespace {
Q_LOGGING_CATEGORY(filesLog, "zqticker.files")

// Between two slices whose lines mostly go unseen.
constexpr std::chrono::milliseconds Pause = 20ms;
} // namespace

TailFollower::TailFollower(const QString& path, const LineSplitter::Receiver& receiver,
                           std::function<bool()> isFull)
    : path_(path), reader_(QFile::encodeName(path),
                           [this, receiver](const QString& line) {
                             hasGiven_ = true;
                             receiver(line);
                           }),
      isFull_(std::move(isFull)) {
  slice_.setSingleShot(true);
  connect(&slice_, &QTimer::timeout, this, &TailFollower::readSlice);
}

TailFollower::~TailFollower() = default;

void TailFollower::start() {
  reader_.start();
}

void TailFollower::tellProblem() {
  const TailProblem& problem = reader_.problem();
  if (problem != toldProblem_ && !problem.isNone())
    qCWarning(filesLog).noquote() << QString(u"tail "_s + path_ + u": "_s + problem.text +
                                             u"; waiting for it"_s);
  toldProblem_ = problem;
}

void TailFollower::look() {
  if (!slice_.isActive())
    readSlice();
}

void TailFollower::readSlice() {
  hasGiven_ = false;
  if (reader_.readSome())
    slice_.start(isFull_ && isFull_() ? Pause : 0ms);
  // Between two steps of a rotation there is no file.
  if (!reader_.problem().isMissing())
    tellProblem();
  if (hasGiven_)
    Q_EMIT received();
}

} // namespace zq::app
