// How a paragraph is set.
#pragma once

#include "zqticker/platform/objects/Object.h"

#include <optional>
#include <vector>

namespace zq::platform {

// A stop at which text after a tab goes on.
class ZQTICKER_EXPORT TextTab : public Object {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSTextTab")

 public:
  TextTab();
  // `location` in points from the margin; `alignment` as TextAlignment's number.
  TextTab(double location, int alignment);
  ~TextTab() override;

  double location() const { return location_; }
  int alignment() const { return alignment_; }

  bool isEqual(const Object& other) const override;
  Ref<Object> copy() override;
  void encodeWithCoder(Coder& coder) override;
  Ref<Object> initWithCoder(Coder& coder) override;

 private:
  double location_ = 0;
  int alignment_ = 0;
};

enum class TextAlignment { Left = 0, Right = 1, Center = 2, Justified = 3, Natural = 4 };
enum class WritingDirection { Natural = -1, LeftToRight = 0, RightToLeft = 1 };

// The settings of a paragraph, in points where they are lengths. All are kept and archived; text
// on one line honours the writing direction.
struct ZQTICKER_EXPORT ParagraphSettings {
  TextAlignment alignment = TextAlignment::Natural;
  WritingDirection writingDirection = WritingDirection::Natural;
  int lineBreakMode = 0;
  double defaultTabInterval = 0;
  double headIndent = 0;
  double firstLineHeadIndent = 0;
  double tailIndent = 0;
  double paragraphSpacing = 0;
  double paragraphSpacingBefore = 0;
  double lineSpacing = 0;
  double minimumLineHeight = 0;
  double maximumLineHeight = 0;
  double lineHeightMultiple = 0;
  double tighteningFactorForTruncation = 0;
  double hyphenationFactor = 0;
  bool allowsTighteningForTruncation = false;

  friend bool operator==(const ParagraphSettings&, const ParagraphSettings&) = default;
};

// An immutable paragraph style.
class ZQTICKER_EXPORT ParagraphStyle : public Object {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSParagraphStyle")

 public:
  // The tab stops of a paragraph; nothing means stops at equal distances.
  using TabStops = std::optional<std::vector<Ref<TextTab>>>;

  ParagraphStyle();
  explicit ParagraphStyle(const ParagraphSettings& settings, TabStops tabStops = std::nullopt);
  ~ParagraphStyle() override;

  const ParagraphSettings& settings() const { return settings_; }
  const TabStops& tabStops() const { return tabStops_; }

  // Whether `other` is a paragraph style of the same settings and stops.
  bool isEqual(const Object& other) const override;
  Ref<Object> copy() override;
  void encodeWithCoder(Coder& coder) override;
  Ref<Object> initWithCoder(Coder& coder) override;

 protected:
  ParagraphSettings settings_;
  TabStops tabStops_;
  // Lists and text blocks, which are kept for the next archive only.
  Any textLists_;
  Any textBlocks_;
};

// A paragraph style that can be changed.
class ZQTICKER_EXPORT MutableParagraphStyle : public ParagraphStyle {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSMutableParagraphStyle")

 public:
  using ParagraphStyle::ParagraphStyle;

  void setSettings(const ParagraphSettings& settings) { settings_ = settings; }
  void setTabStops(TabStops tabStops) { tabStops_ = std::move(tabStops); }
};

} // namespace zq::platform
