// The running ticker, with an end to its own connection to the X server.
//
//   zqticker-ticker-probe ARGUMENTS...
//     those of zqticker run, of which texts and the look count; "in" and "out" when the strip comes
//     into sight and goes out of it. A line on standard input ends the connection: "lost"
#include "app/ticker/Ticker.h"
#include "app/x11/XConnection.h"
#include "tests/app/probe_program.h"

#include <QtCore/QSocketNotifier>
#include <QtWidgets/QApplication>

#include <iostream>
#include <string>

#include <sys/socket.h>

using namespace Qt::StringLiterals;
using namespace zq::app;
using zq::app::testing::say;

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const RunOptions options = readRunOptions(QApplication::arguments().mid(1));
  Ticker ticker(options);
  QObject::connect(&ticker.widget().sight(), &StripSight::changed, &ticker,
                   [](bool isInSight) { say(isInSight ? u"in"_s : u"out"_s); });
  ticker.add(options.strip);
  QSocketNotifier input(0, QSocketNotifier::Read);
  QObject::connect(&input, &QSocketNotifier::activated, &ticker, [] {
    std::string line;
    if (!std::getline(std::cin, line))
      return QApplication::quit();
    const std::shared_ptr<XConnection> connection = XConnection::shared();
    QObject::connect(
        connection.get(), &XConnection::lost, qApp, [] { say(u"lost"_s); }, Qt::QueuedConnection);
    ::shutdown(xcb_get_file_descriptor(connection->get()), SHUT_RDWR);
  });
  return QApplication::exec();
}
