// A ticker that only remembers what it was asked for.
#pragma once

#include "app/bus/BusFailure.h"
#include "app/bus/TickerReceiver.h"

#include <QtCore/QByteArray>

#include <functional>
#include <vector>

#include <unistd.h>

namespace zq::app::testing {

class FakeReceiver : public TickerReceiver {
 public:
  struct Shown {
    QVariantMap dictionary;
    QByteArray archive;
    BusSender sender;
  };
  std::vector<Shown> messages;
  std::vector<Shown> notifications;
  std::vector<Shown> signs;
  QStringList removed;
  QStringList arranged;
  QStringList arguments;
  QString folder;
  QByteArray input; // what could be read at once
  bool hadInput = false;
  int queueCount = 0;
  int settingsCount = 0;
  QStringList asked; // of the strip
  int quitCount = 0;
  std::function<void()> beforeMessage = [] {};

  std::function<void()> decode; // of messages

  ArrivingSign displayMessage(const QVariantMap& message, const BusSender& sender) override {
    return {decode, [this, message, sender] {
              beforeMessage();
              messages.push_back({message, {}, sender});
              return message.value(QStringLiteral("identifier")).toString();
            }};
  }
  ArrivingSign displayNotification(const QVariantMap& message, const BusSender& sender) override {
    notifications.push_back({message, {}, sender});
    return {};
  }
  ArrivingSign displaySign(const QByteArray& archive, const QVariantMap& origin,
                           const BusSender& sender) override {
    signs.push_back({origin, archive, sender});
    return {nullptr, [] { return QStringLiteral("made"); }};
  }
  bool removeSign(const QString& identifier, const BusSender&) override {
    removed.append(identifier);
    return identifier == QStringLiteral("there");
  }
  void arrangeSigns(const QStringList& identifiers, const BusSender&) override {
    arranged = identifiers;
  }
  void run(const QStringList& runArguments, const QString& runFolder,
           const QDBusUnixFileDescriptor& standardInput) override {
    if (runArguments.contains(QStringLiteral("--wrong")))
      throw BusFailure(BusFailure::Kind::Failed, QStringLiteral("--wrong: unknown option"));
    arguments = runArguments;
    folder = runFolder;
    hadInput = standardInput.isValid();
    char bytes[64];
    const ssize_t count =
        hadInput ? ::read(standardInput.fileDescriptor(), bytes, sizeof bytes) : 0;
    input = QByteArray(bytes, count < 0 ? 0 : count);
  }
  void showQueue() override { ++queueCount; }
  void showSettings() override { ++settingsCount; }
  void pause() override { asked.append(QStringLiteral("pause")); }
  void resume() override { asked.append(QStringLiteral("resume")); }
  void hide() override { asked.append(QStringLiteral("hide")); }
  void show() override { asked.append(QStringLiteral("show")); }
  void focus() override { asked.append(QStringLiteral("focus")); }
  void quit() override { ++quitCount; }
};

} // namespace zq::app::testing
