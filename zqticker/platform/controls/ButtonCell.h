// Cells of buttons.
#pragma once

#include "zqticker/platform/controls/ActionCell.h"

namespace zq::platform {

class Image;

// A cell that is pressed. Titles are plain text; pictures are kept and archived, not drawn.
//
// Thread: main.
class ZQTICKER_EXPORT ButtonCell : public ActionCell {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSButtonCell")

 public:
  // A bordered push button called "Button", of type momentary push-in and bezel style 1, centred.
  ButtonCell();
  // The same with another title.
  // Operation: initTextCell:
  explicit ButtonCell(const QString& title);
  ~ButtonCell() override;

  // The title that shows instead of the other while the button is on or pressed, where the masks
  // say so; empty at first.
  const QString& alternateTitle() const { return alternateTitle_; }
  virtual void setAlternateTitle(const QString& title);

  // Which button this looks like; any number.
  virtual int bezelStyle() const { return bezelStyle_; }
  virtual void setBezelStyle(int style);
  bool isBordered() const override;
  void setBordered(bool bordered) override;
  bool isTransparent() const;
  void setTransparent(bool transparent);

  // Sets both masks as the type asks; a type without known masks leaves them. The type itself is
  // not kept, except for the archive.
  //
  //     type             0   1   2   3   4   5   6   7
  //     highlightsBy    12  14   3   1   1   1  12  14
  //     showsStateBy     0  12   1   1   1   0  12   0
  virtual void setButtonType(ButtonType type);
  // Sets of CellMask.
  unsigned highlightsBy() const;
  void setHighlightsBy(unsigned mask);
  unsigned showsStateBy() const;
  void setShowsStateBy(unsigned mask);

  // The characters of the key that presses the button; kept for the archive.
  const QString& keyEquivalent() const { return keyEquivalent_; }
  void setKeyEquivalent(const QString& key) { keyEquivalent_ = key; }
  const Ref<Image>& image() const { return image_; }
  void setImage(const Ref<Image>& image) { image_ = image; }

  // The title that shows now.
  QString shownTitle() const;

  // Room for both titles.
  QSizeF cellSize() const override;
  void drawWithFrame(const QRectF& frame, ControlView* inView) override;
  void drawInteriorWithFrame(const QRectF& frame, ControlView* inView) override;

  // Whether the type shows its state at all.
  bool clickChangesState(const ControlView* view) const override;

  Ref<Object> copy() override;
  void encodeWithCoder(Coder& coder) override;
  Ref<Object> initWithCoder(Coder& coder) override;

 protected:
  ButtonCell(const ButtonCell&) = default;

 private:
  std::uint32_t buttonFlags_;
  std::uint32_t buttonFlags2_ = 0;
  int bezelStyle_ = 1;
  QString alternateTitle_;
  QString keyEquivalent_;
  Ref<Image> image_;
  // An Image, a ButtonImageSource, or the Font of the key equivalent.
  Ref<Object> alternateImage_;
  // Milliseconds until a held button repeats, and between repetitions.
  int periodicDelay_ = 400;
  int periodicInterval_ = 75;
  std::optional<std::int64_t> archivedType_;
  bool archivesBezelStyle_ = false;
};

// The name of a pair of pictures that the platform draws itself, of check boxes for example. Kept
// for the archive.
class ZQTICKER_EXPORT ButtonImageSource : public Object {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSButtonImageSource")

 public:
  ButtonImageSource();
  ~ButtonImageSource() override;

  const QString& imageName() const { return imageName_; }

  void encodeWithCoder(Coder& coder) override;
  Ref<Object> initWithCoder(Coder& coder) override;

 private:
  QString imageName_;
};

} // namespace zq::platform
