#include "zqticker/platform/text/TextAttachment.h"

#include "zqticker/platform/archiving/ClassRegistry.h"
#include "zqticker/platform/archiving/Coder.h"
#include "zqticker/platform/graphics/Image.h"

namespace zq::platform {

ZQ_REGISTER_VALUE_CLASS(TextAttachmentCell);
ZQ_REGISTER_VALUE_CLASS(TextAttachment);

static constexpr QLatin1StringView FlagsKey{"NSCellFlags"};
static constexpr QLatin1StringView Flags2Key{"NSCellFlags2"};
static constexpr QLatin1StringView ContentsKey{"NSContents"};
// Where a cell of another kind keeps its image.
static constexpr QLatin1StringView SupportKey{"NSSupport"};
static constexpr QLatin1StringView FileWrapperKey{"NSFileWrapper"};
static constexpr QLatin1StringView CellKey{"NSCell"};

// The flag word of a cell of the type image: 2 in bits 26 and 27.
static constexpr int ImageCellFlags = 2 << 26;

TextAttachmentCell::TextAttachmentCell() = default;
TextAttachmentCell::~TextAttachmentCell() = default;

Ref<TextAttachmentCell> TextAttachmentCell::make(const Ref<Image>& image) {
  auto cell = std::make_shared<TextAttachmentCell>();
  cell->image_ = image;
  return cell;
}

QSizeF TextAttachmentCell::cellSize() const {
  return image_ ? image_->size() : QSizeF(0, 0);
}

bool TextAttachmentCell::isEqual(const Object& other) const {
  const auto* cell = dynamic_cast<const TextAttachmentCell*>(&other);
  return cell && isEqualValue(any(cell->image_), any(image_));
}

Ref<Object> TextAttachmentCell::copy() {
  return make(image_);
}

void TextAttachmentCell::encodeWithCoder(Coder& coder) {
  coder.encodeInt(ImageCellFlags, FlagsKey);
  coder.encodeInt(0, Flags2Key);
  coder.encodeObject(image_, ContentsKey);
}

Ref<Object> TextAttachmentCell::initWithCoder(Coder& coder) {
  image_ = objectOf<Image>(coder.decodeObjectForKey(ContentsKey));
  if (!image_)
    image_ = objectOf<Image>(coder.decodeObjectForKey(SupportKey));
  return shared_from_this();
}

TextAttachment::TextAttachment() = default;
TextAttachment::~TextAttachment() = default;

Ref<TextAttachment> TextAttachment::make(const Ref<Image>& image) {
  auto attachment = std::make_shared<TextAttachment>();
  attachment->cell_ = TextAttachmentCell::make(image);
  return attachment;
}

bool TextAttachment::isEqual(const Object& other) const {
  const auto* attachment = dynamic_cast<const TextAttachment*>(&other);
  return attachment && isEqualValue(any(attachment->cell_), any(cell_));
}

Ref<Object> TextAttachment::copy() {
  auto attachment = std::make_shared<TextAttachment>();
  attachment->cell_ = copyOf(cell_);
  return attachment;
}

void TextAttachment::encodeWithCoder(Coder& coder) {
  coder.encodeObject(Any(), FileWrapperKey);
  coder.encodeObject(cell_, CellKey);
}

Ref<Object> TextAttachment::initWithCoder(Coder& coder) {
  cell_ = objectOf<TextAttachmentCell>(coder.decodeObjectForKey(CellKey));
  return shared_from_this();
}

} // namespace zq::platform
