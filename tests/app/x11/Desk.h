// What a user's tools tell about the windows on a screen.
#pragma once

#include "tests/app/XServer.h"

#include <QtCore/QProcess>
#include <QtCore/QRect>
#include <QtCore/QRegularExpression>
#include <QtCore/QStringList>

#include <gtest/gtest.h>

#include <vector>

namespace zq::app::testing {

// The windows of an X server, by xdotool, xprop, xwininfo and xrandr.
class Desk {
 public:
  explicit Desk(const QProcessEnvironment& environment) : environment_(environment) {}

  static bool isInstalled() {
    for (const QString& name : {QStringLiteral("xdotool"), QStringLiteral("xprop"),
                                QStringLiteral("xwininfo"), QStringLiteral("xrandr")})
      if (!XServer::hasProgram(name))
        return false;
    return XServer::isInstalled();
  }

  // What a tool prints; empty where it fails, as it does for windows that have just gone.
  QString ask(const QString& program, const QStringList& arguments) const {
    QProcess tool;
    tool.setProcessEnvironment(environment_);
    tool.start(program, arguments);
    if (!tool.waitForFinished() || tool.exitCode() != 0)
      return QString();
    return QString::fromUtf8(tool.readAllStandardOutput()).trimmed();
  }

  // The windows with this title that are to be seen, the oldest first.
  QStringList windows(const QString& title) const {
    return ask(QStringLiteral("xdotool"),
               {QStringLiteral("search"), QStringLiteral("--onlyvisible"), QStringLiteral("--name"),
                u'^' + title + u'$'})
        .split(u'\n', Qt::SkipEmptyParts);
  }
  QStringList strips() const { return windows(QStringLiteral("zqticker")); }

  // Where a window stands on the X screen; null where there is none.
  QRect rectOf(const QString& window) const {
    if (window.isEmpty())
      return QRect();
    const QString told = ask(QStringLiteral("xwininfo"), {QStringLiteral("-id"), window});
    const auto number = [&](const QString& name) {
      const QRegularExpression line(name + QStringLiteral(":\\s+(-?\\d+)"));
      return line.match(told).captured(1).toInt();
    };
    return QRect(number(QStringLiteral("Absolute upper-left X")),
                 number(QStringLiteral("Absolute upper-left Y")), number(QStringLiteral("Width")),
                 number(QStringLiteral("Height")));
  }
  // That of the only window with this title.
  QRect rectOfOnly(const QString& title) const {
    const QStringList found = windows(title);
    return found.size() == 1 ? rectOf(found.first()) : QRect();
  }
  QRect strip() const { return rectOfOnly(QStringLiteral("zqticker")); }

  // What a property of a window, or without one of the root, holds; empty where it is missing.
  QString property(const QString& window, const QString& name) const {
    QStringList arguments{QStringLiteral("-notype")};
    if (window.isEmpty())
      arguments << QStringLiteral("-root");
    else
      arguments << QStringLiteral("-id") << window;
    const QString told = ask(QStringLiteral("xprop"), arguments << name);
    const qsizetype sign = told.indexOf(QStringLiteral(" = "));
    return sign < 0 ? QString() : told.mid(sign + 3);
  }
  // What the only strip reserves: depths from left, right, top and bottom, then the ends of each.
  QString stripRoom() const {
    const QStringList found = strips();
    return found.size() == 1 ? property(found.first(), QStringLiteral("_NET_WM_STRUT_PARTIAL"))
                             : QString();
  }

  void setMonitor(const QString& name, const QRect& rect, const QString& output) const {
    ask(QStringLiteral("xrandr"), {QStringLiteral("--setmonitor"), name,
                                   QStringLiteral("%1/100x%2/100+%3+%4")
                                       .arg(rect.width())
                                       .arg(rect.height())
                                       .arg(rect.x())
                                       .arg(rect.y()),
                                   output});
  }
  void removeMonitor(const QString& name) const {
    ask(QStringLiteral("xrandr"), {QStringLiteral("--delmonitor"), name});
  }

 private:
  QProcessEnvironment environment_;
};

} // namespace zq::app::testing
