// Text with attributes on ranges of it.
#pragma once

#include "zqticker/platform/objects/Object.h"
#include "zqticker/platform/objects/Range.h"
#include "zqticker/platform/text/text_attributes.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QPointF>
#include <QtCore/QSizeF>
#include <QtCore/QString>

#include <memory>
#include <vector>

namespace zq::platform {

class LineHolder;
class MutableAttributedString;
class TextAttachment;
class TextLine;

// Immutable text whose every UTF-16 code unit has attributes. Ranges and indexes count UTF-16 code
// units.
//
// Text without a font is drawn in Helvetica at 12 points, without a colour in black.
//
// One line: line terminators and tabs take the place of one space (CR LF of one together), other
// control characters take none, a lone surrogate shows as U+FFFD. A character U+FFFC with an
// attachment shows the attachment's picture, its lower edge on the baseline, and takes the
// picture's size, whatever its font; neither lines under nor through the text pass it. The picture
// is taken as it is when the text is first measured or drawn. Bidirectional text is ordered by
// the direction of the whole text: that of the paragraph style where it states one, else that of
// the first strong character.
//
// Thread: characters and attributes any, measuring and drawing the main thread.
class ZQTICKER_EXPORT AttributedString : public Object {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSAttributedString")

 public:
  // A stretch of text with the same attributes.
  struct Run {
    Range range;
    Attributes attributes;
  };

  // Empty text.
  AttributedString();
  ~AttributedString() override;

  static Ref<AttributedString> make(const QString& string, const Attributes& attributes = {});
  // The one character that shows `attachment`; null gives a character that shows none.
  static Ref<AttributedString>
  attributedStringWithAttachment(const Ref<TextAttachment>& attachment);

  const QString& string() const { return string_; }
  qsizetype length() const { return string_.size(); }

  // The attributes at `index`; `effectiveRange`, where given, receives the run that holds it.
  // Raises RangeException for an index outside the text.
  const Attributes& attributesAtIndex(qsizetype index, Range* effectiveRange = nullptr) const;
  // The value of one attribute at `index`, or nothing. Raises like attributesAtIndex.
  Any attributeAtIndex(const QString& name, qsizetype index) const;
  // All runs in order, without gaps; none for empty text. Neighbours may be equal.
  const std::vector<Run>& runs() const { return runs_; }
  // A part with its attributes. Raises RangeException for a range outside the text.
  Ref<AttributedString> attributedSubstringFromRange(Range range) const;

  // The natural size on one line in points. The width is the sum of the advances, trailing spaces
  // included. The height is the largest ascent plus the largest descent plus the largest leading
  // of the fonts and pictures shown, each run's own font and those that stand in for missing
  // characters: for plain text Font::lineHeight. Empty text has no width and the height of its
  // font's line, which is the default font's.
  QSizeF size() const;
  // Does a part of what the first size() takes, a short one at least, and more until `deadline`:
  // for a text whose measuring would take longer than a frame. Whether size() is known now; what it
  // is does not depend on how it was come by.
  bool measureUntil(const QDeadlineTimer& deadline) const;
  // Whether the text measures and draws at any later time as it would now: it is immutable and
  // shows no picture, which may change. Raises like measuring.
  bool isSettled() const;

  // Draws on one line into the current context. The box of size() stands with the corner of its
  // smallest coordinates at `point`: the lower left one, in a flipped context the upper left. Text
  // is upright in both.
  void drawAtPoint(QPointF point) const;

  // The characters.
  QString description() const override;
  // Whether `other` has the same characters with equal attributes. A mutable and an immutable
  // string may be equal.
  bool isEqual(const Object& other) const override;
  // A new immutable string.
  Ref<Object> copy() override;
  Ref<MutableAttributedString> mutableCopy() const;

  void encodeWithCoder(Coder& coder) override;
  Ref<Object> initWithCoder(Coder& coder) override;

 protected:
  void checkRange(Range range) const;
  // The layout, shared by copies; made where it is not at hand.
  std::shared_ptr<const TextLine> line() const;

  QString string_;
  std::vector<Run> runs_;
  mutable std::shared_ptr<LineHolder> line_; // null before it is needed

 private:
  LineHolder& holder() const;
  Ref<const AttributedString> asItIs() const;
};

// An attributed string that can be changed. Operations with a range raise RangeException where it
// does not lie in the text.
class ZQTICKER_EXPORT MutableAttributedString : public AttributedString {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSMutableAttributedString")

 public:
  static Ref<MutableAttributedString> make(const QString& string,
                                           const Attributes& attributes = {});

  // New characters take the attributes of the first one replaced; without one, those of the
  // character before the range, else of the one after it.
  void replaceCharactersInRange(Range range, const QString& string);
  void replaceCharactersInRange(Range range, const AttributedString& string);
  void deleteCharactersInRange(Range range);
  void appendAttributedString(const AttributedString& string);

  void setAttributes(const Attributes& attributes, Range range);
  // An attribute of nothing is removed.
  void addAttribute(const QString& name, const Any& value, Range range);
  void addAttributes(const Attributes& attributes, Range range);
  void removeAttribute(const QString& name, Range range);

 private:
  // Cuts the runs so that both ends of `range` lie between runs; returns the indexes of the first
  // run inside and of the first behind.
  std::pair<std::size_t, std::size_t> isolate(Range range);
  void changed();
};

} // namespace zq::platform
