// Classes of rollover buttons as programs might write them; the tests compile one of them each.
#include "zqticker/rollover/ZQRollOverButton.h"

#if defined(ZQ_COMPLETE)

class PlayButton : public ZQRollOverButton {
  Q_OBJECT

 public:
  explicit PlayButton(QWidget* parent = nullptr)
      : RollOverButtonClass(this), ZQRollOverButton(parent) {}
};
class LargePlayButton : public PlayButton {
  Q_OBJECT

 public:
  explicit LargePlayButton(QWidget* parent = nullptr)
      : RollOverButtonClass(this), PlayButton(parent) {}
};
void use() {
  PlayButton button;
  LargePlayButton below;
  ZQRollOverButton::setAppearance<LargePlayButton>(ZQRollOverButton::appearance<PlayButton>());
}

#elif defined(ZQ_WITHOUT_Q_OBJECT)

class PlayButton : public ZQRollOverButton {
 public:
  explicit PlayButton(QWidget* parent = nullptr)
      : RollOverButtonClass(this), ZQRollOverButton(parent) {}
};

#elif defined(ZQ_BELOW_WITHOUT_Q_OBJECT)

class PlayButton : public ZQRollOverButton {
  Q_OBJECT

 public:
  explicit PlayButton(QWidget* parent = nullptr)
      : RollOverButtonClass(this), ZQRollOverButton(parent) {}
};
class LargePlayButton : public PlayButton {
 public:
  LargePlayButton() : RollOverButtonClass(this) {}
};

#elif defined(ZQ_WITHOUT_ITS_CLASS)

class PlayButton : public ZQRollOverButton {
  Q_OBJECT

 public:
  explicit PlayButton(QWidget* parent = nullptr) : ZQRollOverButton(parent) {}
};

#elif defined(ZQ_WITH_INHERITED_CONSTRUCTORS)

class PlayButton : public ZQRollOverButton {
 public:
  using ZQRollOverButton::ZQRollOverButton;
};
PlayButton button;

#elif defined(ZQ_LOOK_OF_NO_CLASS)

class PlayButton {};
const auto look = ZQRollOverButton::appearance<PlayButton>();

#endif
