// A ticker on a link that a test plays.
#pragma once

#include "app/services/TickerLink.h"
#include "zqticker/platform/archiving/KeyedUnarchiver.h"
#include "zqticker/signs/ZQTickerSign.h"

#include <string>
#include <vector>

namespace zq::app::testing {

class FakeTickerLink : public TickerLink {
 public:
  struct Call {
    std::string text; // "show a", "remove a", "arrange a b": identifiers without the sender's
    QByteArray archive;
    QVariantMap origin;
    Done done;

    platform::Ref<ZQTickerSign> sign() const {
      return platform::KeyedUnarchiver::unarchiveObjectOfClass<ZQTickerSign>(archive);
    }
  };

  explicit FakeTickerLink(const QString& sender) : sender_(sender) {}

  bool isThere() const override { return isThere_; }
  void show(const QByteArray& archive, const QVariantMap& origin, Done done) override {
    Call call{"show ", archive, origin, std::move(done)};
    call.text += shortName(call.sign()->identifier().value_or(QString()));
    receive(std::move(call));
  }
  void remove(const QString& identifier, Done done) override {
    receive({"remove " + shortName(identifier), {}, {}, std::move(done)});
  }
  void arrange(const QStringList& identifiers, Done done) override {
    Call call{"arrange", {}, {}, std::move(done)};
    for (const QString& identifier : identifiers)
      call.text += ' ' + shortName(identifier);
    receive(std::move(call));
  }

  void appear() {
    isThere_ = true;
    Q_EMIT appeared();
  }
  void vanish() {
    isThere_ = false;
    Q_EMIT vanished();
  }

  // All calls so far, and those that have not been answered.
  const std::vector<Call>& calls() const { return calls_; }
  std::size_t openCalls() const { return calls_.size() - answered_; }
  // Answers the oldest call that has no answer.
  void answer(TickerReply::Kind kind, const QString& message = {}) {
    // The answer may bring the next call.
    const Done done = calls_[answered_++].done;
    done({kind, message});
  }
  // Takes everything, what comes of it included; the calls that were open or came meanwhile, with
  // commas between.
  std::string takeAll() {
    std::string texts;
    while (openCalls() > 0) {
      texts += (texts.empty() ? "" : ", ") + calls_[answered_].text;
      answer(TickerReply::Kind::Taken);
    }
    return texts;
  }
  // What is open, and will be answered by nobody.
  std::string forgetOpenCalls() {
    std::string texts;
    for (; answered_ < calls_.size(); ++answered_)
      texts += (texts.empty() ? "" : ", ") + calls_[answered_].text;
    return texts;
  }

 private:
  std::string shortName(const QString& identifier) const {
    const QString prefix = sender_ + u' ';
    return identifier.startsWith(prefix) ? identifier.sliced(prefix.size()).toStdString()
                                         : "(foreign) " + identifier.toStdString();
  }
  void receive(Call call) { calls_.push_back(std::move(call)); }

  QString sender_;
  bool isThere_ = false;
  std::vector<Call> calls_;
  std::size_t answered_ = 0;
};

} // namespace zq::app::testing
