#include "app/commands/strip_values.h"

#include "app/commands/failures.h"

#include <QtCore/QLocale>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace zq::app {

const OptionSpec& delayOption() {
  static const OptionSpec option{
      u"delay"_s, {u"SECONDS"_s}, u"Seconds between the end of a round and the next."_s};
  return option;
}

const OptionSpec& continuousOption() {
  static const OptionSpec option{
      u"continuous"_s,
      {},
      u"Let the next round follow directly, instead of letting the strip run empty between."_s};
  return option;
}

const std::vector<AllowedWord>& directionWords() {
  static const std::vector<AllowedWord> words{{u"left"_s, u"the default"_s},
                                              {u"right"_s, {}},
                                              {u"up"_s, {}},
                                              {u"down"_s, {}},
                                              {u"horizontal"_s, u"the same as left"_s},
                                              {u"vertical"_s, u"the same as up"_s}};
  return words;
}

const std::vector<AllowedWord>& edgeWords() {
  static const std::vector<AllowedWord> words{
      {u"top"_s, {}},
      {u"bottom"_s, u"the default"_s},
      {u"left"_s, u"a vertical strip"_s},
      {u"right"_s, u"the default of a vertical strip"_s},
      {u"floating"_s, u"a small strip that can be moved"_s}};
  return words;
}

QString wordOf(ScrollDirection direction) {
  switch (direction) {
  case ScrollDirection::Left:
    break;
  case ScrollDirection::Right:
    return u"right"_s;
  case ScrollDirection::Up:
    return u"up"_s;
  case ScrollDirection::Down:
    return u"down"_s;
  }
  return u"left"_s;
}

ScrollDirection directionOf(const ParsedOption& option) {
  const QString word = wordOf(option, wordsOf(directionWords()));
  if (word == "right"_L1)
    return ScrollDirection::Right;
  if (word == "down"_L1)
    return ScrollDirection::Down;
  return word == "up"_L1 || word == "vertical"_L1 ? ScrollDirection::Up : ScrollDirection::Left;
}

bool isOnOf(const ParsedOption& option) {
  return wordOf(option, {u"on"_s, u"off"_s}) == "on"_L1;
}

double speedOf(const ParsedOption& option) {
  return numberOf(option, SlowestSpeed, FastestSpeed);
}

double sideOf(const ParsedOption& option) {
  return numberOf(option, ShortestSide, LongestSide);
}

double fadeOf(const ParsedOption& option) {
  if (option.values.isEmpty())
    return UsualFade;
  if (option.values.first() == "off"_L1 || option.values.first() == "0"_L1)
    return 0;
  bool isNumber = false;
  option.values.first().toDouble(&isNumber);
  if (!isNumber)
    throw UsageError(option.text() + u": must be a number of points, or off"_s);
  return numberOf(option, ShortestSide, LongestSide);
}

QString textOfFade(double points) {
  return points > 0 ? QString::number(points, 'g', QLocale::FloatingPointShortest) : u"off"_s;
}

FontRequest fontOf(const ParsedOption& option) {
  const QString text = option.values.first().simplified();
  if (text.isEmpty())
    throw UsageError(option.text() + u": the font name is empty"_s);
  return {text, option.dashes + option.name};
}

Edge edgeOf(const ParsedOption& option) {
  const QString word = wordOf(option, wordsOf(edgeWords()));
  if (word == "top"_L1)
    return Edge::Top;
  if (word == "bottom"_L1)
    return Edge::Bottom;
  if (word == "floating"_L1)
    return Edge::Floating;
  return word == "left"_L1 ? Edge::Left : Edge::Right;
}

QString screenOf(const ParsedOption& option) {
  const QString name = option.values.first().trimmed();
  if (name.isEmpty())
    throw UsageError(option.text() + u": the name of the screen is empty"_s);
  return name == "primary"_L1 ? QString() : name;
}

// What is no address at all is told apart from one of another kind only by its scheme.
QUrl feedOf(const ParsedOption& option, const std::vector<QUrl>& before) {
  const QUrl url(option.values.first().trimmed());
  const bool isWeb = url.scheme() == "http"_L1 || url.scheme() == "https"_L1;
  const bool isLocal = url.scheme() == "file"_L1 || url.scheme() == "data"_L1;
  if (!url.isValid() || !(isLocal || (isWeb && !url.host().isEmpty())))
    throw UsageError(option.text() + u": not an address (write https://..., http://... or "
                                     u"file:///...)"_s);
  if (std::find(before.begin(), before.end(), url) != before.end())
    throw UsageError(option.text() + u": given twice"_s);
  return url;
}

std::size_t feedItemsOf(const ParsedOption& option) {
  return static_cast<std::size_t>(integerOf(option, 1, MostFeedItems));
}

double feedIntervalOf(const ParsedOption& option) {
  return numberOf(option, ShortestInterval, LongestInterval);
}

} // namespace zq::app
