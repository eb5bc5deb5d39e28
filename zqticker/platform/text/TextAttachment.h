// Pictures that stand in a line of text like a character.
#pragma once

#include "zqticker/platform/objects/Object.h"

#include <QtCore/QSizeF>

#include <memory>

namespace zq::platform {

class Image;

// What an attachment shows: a picture at its own size, its lower edge on the baseline.
//
// Thread: main.
class ZQTICKER_EXPORT TextAttachmentCell : public Object {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSTextAttachmentCell")

 public:
  // A cell without a picture, which takes no place; what a decoder starts from.
  TextAttachmentCell();
  ~TextAttachmentCell() override;

  static Ref<TextAttachmentCell> make(const Ref<Image>& image);

  // Null for none.
  const Ref<Image>& image() const { return image_; }
  void setImage(const Ref<Image>& image) { image_ = image; }

  // The picture's size in points; no size without one.
  QSizeF cellSize() const;

  // Whether `other` shows an equal picture.
  bool isEqual(const Object& other) const override;
  // A cell that shows the very same image.
  Ref<Object> copy() override;

  // Archived as a cell of the type image.
  void encodeWithCoder(Coder& coder) override;
  // A cell that holds anything but an image comes back without a picture.
  Ref<Object> initWithCoder(Coder& coder) override;

 private:
  Ref<Image> image_;
};

// The value of the attribute AttachmentAttributeName. It shows its cell for every character U+FFFC
// that has it; on other characters it does nothing.
//
// Thread: main.
class ZQTICKER_EXPORT TextAttachment : public Object {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSTextAttachment")

 public:
  // The character that an attachment takes the place of.
  static constexpr char16_t AttachmentCharacter = 0xfffc;

  // An attachment without a cell, which shows nothing and takes no place.
  TextAttachment();
  ~TextAttachment() override;

  // An attachment whose cell shows `image`.
  static Ref<TextAttachment> make(const Ref<Image>& image);

  // Null for none.
  const Ref<TextAttachmentCell>& attachmentCell() const { return cell_; }
  void setAttachmentCell(const Ref<TextAttachmentCell>& cell) { cell_ = cell; }

  // Whether `other` has an equal cell.
  bool isEqual(const Object& other) const override;
  // An attachment with a copy of the cell.
  Ref<Object> copy() override;

  // Attached files are neither written nor read.
  void encodeWithCoder(Coder& coder) override;
  Ref<Object> initWithCoder(Coder& coder) override;

 private:
  Ref<TextAttachmentCell> cell_;
};

} // namespace zq::platform
