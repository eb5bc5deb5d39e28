// What services hand their signs to.
#pragma once

#include "app/display/SignOrigin.h"
#include "app/display/StripItem.h"
#include "zqticker/platform/objects/Object.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

class ZQTickerSign;

namespace zq::app {

// Shows the signs of services: the display of this program, or a ticker that is another program.
// Signs are known by their identifiers, which all of them have.
//
// Thread: main.
class SignReceiver {
 public:
  // Where a new sign comes.
  enum class Order {
    Arrival,  // behind the others
    Arranged, // last among those that every round shows in the order of `arrange`
  };

  virtual ~SignReceiver();

  // A sign for a line of text in the font and the color of the display that will show it.
  virtual platform::Ref<ZQTickerSign> makeTextSign(const QString& text) = 0;

  // Where one with the same identifier is to be shown again, `sign` takes over from that one.
  virtual void add(platform::Ref<ZQTickerSign> sign, const SignOrigin& origin, Order order) = 0;
  // Lets `sign` take over from the one with its identifier, which goes on to its end where it is on
  // the strip. Nothing happens where there is none that is to be shown again.
  virtual void replace(platform::Ref<ZQTickerSign> sign, const SignOrigin& origin) = 0;
  // Lets the sign not be shown again.
  virtual void remove(const QString& identifier) = 0;
  // Gives the arranged signs the order of `identifiers`, which names all of them; others are passed
  // over.
  virtual void arrange(const QStringList& identifiers) = 0;
  // Whether a sign with this identifier waits for its first or another showing, as far as is known.
  virtual bool hasWaiting(const QString& identifier) = 0;
};

// Lets `sign` be shown as often as `rule` says.
void setLoopRule(ZQTickerSign& sign, const LoopRule& rule);

} // namespace zq::app
