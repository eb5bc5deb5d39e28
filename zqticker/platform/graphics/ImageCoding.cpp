// Archives of images.
#include "zqticker/platform/graphics/Image.h"

#include "zqticker/platform/archiving/ClassRegistry.h"
#include "zqticker/platform/archiving/Coder.h"
#include "zqticker/platform/graphics/ImageRepresentation.h"
#include "zqticker/platform/objects/Exception.h"

using namespace Qt::StringLiterals;

namespace zq::platform {

static constexpr QLatin1StringView FlagsKey{"NSImageFlags"};
static constexpr QLatin1StringView SizeKey{"NSSize"};
static constexpr QLatin1StringView RepresentationsKey{"NSReps"};
static constexpr QLatin1StringView TiffKey{"NSTIFFRepresentation"};

// The base of the records below; only its name matters.
class ImageRep : public Object {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSImageRep")
};

// The record of a bitmap in an archive: a whole TIFF file.
class BitmapImageRep : public ImageRep {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSBitmapImageRep")

 public:
  BitmapImageRep() = default;
  explicit BitmapImageRep(QByteArray tiff) : tiff_(std::move(tiff)) {}

  const QByteArray& tiff() const { return tiff_; }

  void encodeWithCoder(Coder& coder) override { coder.encodeObject(Any(tiff_), TiffKey); }
  Ref<Object> initWithCoder(Coder& coder) override {
    tiff_ = coder.decodeDataForKey(TiffKey).value_or(QByteArray());
    return shared_from_this();
  }

 private:
  QByteArray tiff_;
};

ZQ_REGISTER_VALUE_CLASS(BitmapImageRep);

void Image::encodeWithCoder(Coder& coder) {
  coder.encodeInt(0, FlagsKey);
  coder.encodeSize(size_, SizeKey);
  if (const std::optional<QByteArray> tiff = TIFFRepresentation()) {
    // One list of alternatives, a number before the representations.
    const QVariantList alternatives{0, any(std::make_shared<BitmapImageRep>(*tiff))};
    coder.encodeObject(Any(QVariantList{Any(alternatives)}), RepresentationsKey);
  }
}

Ref<Object> Image::initWithCoder(Coder& coder) {
  const Any lists = coder.decodeObjectForKey(RepresentationsKey);
  if (lists.isValid() && lists.metaType() != QMetaType::fromType<QVariantList>())
    throw ArchiveException(u"the representations of an image are a list"_s,
                           coder.keyPath(RepresentationsKey));
  const QVariantList outer = lists.toList();
  for (const Any& alternatives : outer) {
    const QVariantList inner = alternatives.toList();
    for (const Any& element : inner)
      if (const auto bitmap = objectOf<BitmapImageRep>(element))
        if (const Ref<Image> image = initWithData(bitmap->tiff()))
          representations_.insert(representations_.end(), image->representations_.begin(),
                                  image->representations_.end());
  }
  if (coder.containsValueForKey(SizeKey))
    setSize(coder.decodeSizeForKey(SizeKey));
  else if (!representations_.empty())
    setSize(representations_.front()->size());
  return shared_from_this();
}

} // namespace zq::platform

#include "ImageCoding.moc"
