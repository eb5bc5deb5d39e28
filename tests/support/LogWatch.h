// Watches the log of a test: a warning or an error that the test did not announce fails it, and so
// does an announced one that did not come.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace zq::testing {

// Announces a log line of the running test that contains `part`; each call stands for one line.
void expectLog(const QString& part);

// Lets every log line of the running test pass that contains `part`, any number of times.
void allowLog(const QString& part);

// Installs the message handler and the checks at the end of each test.
void installLogWatch();

} // namespace zq::testing
