#include "app/queue/drop_contents.h"

#include "app/commands/failures.h"
#include "app/display/SignAction.h"
#include "app/intake/SilencedStandardError.h"
#include "app/queue/sign_changes.h"
#include "app/queue/sign_files.h"
#include "app/services/picture_decoding.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/graphics/ImageRepresentation.h"
#include "zqticker/signs/ZQImageTickerSign.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFileInfo>
#include <QtCore/QMimeData>
#include <QtCore/QMimeDatabase>
#include <QtCore/QStringDecoder>
#include <QtCore/QUrl>

#include <algorithm>
#include <cmath>
#include <new>

using namespace Qt::StringLiterals;

namespace zq::app {

using namespace platform;

namespace {
constexpr qsizetype MostTitleCharacters = 500;
// Pixels.
constexpr int LeastPixelRoom = 512;
constexpr int MostPixelRoom = 16'384;
constexpr double PixelsPerPoint = 8;

QString tr(const char* text) {
  return QCoreApplication::translate("QueueWindow", text);
}

bool isOfWeb(const QUrl& url) {
  return url.isValid() && !url.host().isEmpty() &&
         (url.scheme() == "http"_L1 || url.scheme() == "https"_L1);
}

bool hasAddresses(const QMimeData& contents) {
  return contents.hasUrls() && !contents.urls().isEmpty();
}

// Null where not all of the picture can be decoded.
Ref<Image> pictureIn(const QByteArray& bytes) {
  const SilencedStandardError silence;
  const Ref<Image> image = Image::initWithData(bytes);
  if (!image || image->size().isEmpty())
    return nullptr;
  const Image::Representations& found = image->representations();
  const bool isWhole = std::all_of(found.begin(), found.end(), [](const auto& representation) {
    return !representation->isBitmap() || !representation->bitmap().isNull();
  });
  return isWhole ? image : nullptr;
}

// The text in `bytes`; nothing where they are none.
std::optional<QString> textIn(const QByteArray& bytes) {
  const auto encoding = QStringConverter::encodingForData(bytes).value_or(QStringConverter::Utf8);
  QStringDecoder decoder(encoding);
  const QString text = decoder.decode(bytes);
  if (decoder.hasError() || text.contains(QChar(u'\0')))
    return std::nullopt;
  return text;
}

// The address and the title in the form of browsers: one line each.
std::optional<QString> titleIn(const QMimeData& contents, const QUrl& url) {
  QString lines;
  if (const QByteArray utf16 = contents.data(u"text/x-moz-url"_s); !utf16.isEmpty()) {
    QStringDecoder decoder(QStringConverter::Utf16LE);
    lines = decoder.decode(utf16.left(MostDroppedTextBytes));
  } else {
    lines = QString::fromUtf8(contents.data(u"_NETSCAPE_URL"_s).left(MostDroppedTextBytes));
  }
  const QStringList parts = lines.split(u'\n');
  if (parts.size() < 2 || QUrl(parts[0].trimmed()) != url)
    return std::nullopt;
  const QString title = parts[1].simplified().left(MostTitleCharacters);
  return title.isEmpty() ? std::nullopt : std::optional(title);
}

// Makes the signs of one drop.
class DropReader {
 public:
  DropReader(QueueSource& queue, std::int64_t showings) : queue_(queue), showings_(showings) {}

  DroppedSigns read(const QMimeData& contents) {
    if (contents.hasImage() && addPicture(contents))
      return result_;
    if (hasAddresses(contents))
      addAddresses(contents);
    else if (contents.hasText())
      addText(contents);
    return result_;
  }

  DroppedSigns read(const std::vector<LoadedFile>& files) {
    for (const LoadedFile& file : files) {
      if (!file.url.isLocalFile())
        addAddress(file.url, std::nullopt);
      else if (file.problem.isEmpty())
        addFile(file);
      else
        result_.problems.append(file.problem);
    }
    return result_;
  }

 private:
  void add(const Ref<ZQTickerSign>& sign) {
    sign->setLoopCount(showings_ < 0 ? ZQEndlessLoopCount : showings_);
    result_.signs.push_back(sign);
  }
  void addImage(const Ref<Image>& image) {
    fitPicture(*image, queue_.pictureRoom());
    add(ZQImageTickerSign::make(image));
  }
  void addLink(const QUrl& url, const QString& title) {
    const Ref<ZQTickerSign> sign = queue_.makeTextSign(title);
    sign->setActionType(OpenLocation);
    sign->setActionString(url.toString(QUrl::FullyEncoded));
    add(sign);
  }

  // False where the picture cannot be used, but something else might.
  bool addPicture(const QMimeData& contents) {
    for (const QString& format : contents.formats()) {
      if (!format.startsWith(u"image/"))
        continue;
      const QByteArray bytes = contents.data(format);
      if (bytes.size() > MostDroppedFileBytes) {
        result_.problems.append(
            tr("The picture is larger than %1 MiB").arg(MostDroppedFileBytes >> 20));
        return true;
      }
      if (const Ref<Image> image = pictureIn(bytes)) {
        addImage(image);
        return true;
      }
    }
    const QImage pixels = qvariant_cast<QImage>(contents.imageData());
    const bool isUsable =
        !pixels.isNull() && qint64(pixels.width()) * pixels.height() <= Image::MaximumPixels;
    if (isUsable)
      addImage(Image::fromQImage(pixels));
    else if (!hasAddresses(contents) && !contents.hasText())
      result_.problems.append(tr("The picture cannot be read"));
    return isUsable;
  }

  void addAddresses(const QMimeData& contents) {
    const QList<QUrl> urls = contents.urls();
    for (const QUrl& url : urls)
      addAddress(url, urls.size() == 1 ? titleIn(contents, url) : std::nullopt);
  }

  void addAddress(const QUrl& url, const std::optional<QString>& title) {
    if (isOfWeb(url))
      addLink(url, title.value_or(url.toDisplayString().left(MostTitleCharacters)));
    else
      result_.problems.append(
          tr("%1: no file and no address of the web").arg(quotedForMessage(url.toString())));
  }

  void addFile(const LoadedFile& file) {
    try {
      if (file.picture.isNull())
        addContents(file.bytes, file.url.toLocalFile());
      else
        addImage(Image::fromQImage(file.picture));
    } catch (const RunTimeError& error) {
      result_.problems.append(error.message());
    }
  }

  void addContents(const QByteArray& bytes, const QString& path) {
    const QString name = shownName(path);
    if (beginsAsArchive(bytes))
      return addSigns(signsOfArchive(bytes, name), name);
    if (const Ref<Image> image = pictureIn(bytes))
      return addImage(image);
    const QString kind = QMimeDatabase().mimeTypeForFileNameAndData(path, bytes).name();
    if (kind.startsWith(u"image/"))
      throw RunTimeError(tr("%1: not a picture that can be read").arg(name));
    const std::optional<QString> text = textIn(bytes);
    if (!text)
      throw RunTimeError(tr("%1: neither a picture nor text nor signs").arg(name));
    if (bytes.size() > MostDroppedTextBytes)
      throw RunTimeError(
          tr("%1: more than %2 MiB of text").arg(name).arg(MostDroppedTextBytes >> 20));
    addLines(*text, name);
  }

  void addSigns(const std::vector<Ref<ZQTickerSign>>& signs, const QString& name) {
    if (qsizetype(result_.signs.size() + signs.size()) > MostDroppedSigns)
      throw RunTimeError(tr("%1: more than %2 signs").arg(name).arg(MostDroppedSigns));
    result_.signs.insert(result_.signs.end(), signs.begin(), signs.end());
  }

  void addText(const QMimeData& contents) {
    const QString text = contents.text();
    const QUrl url(text.trimmed());
    try {
      if (text.size() > MostDroppedTextBytes)
        throw RunTimeError(tr("The text is too long"));
      if (!text.trimmed().contains(u' ') && isOfWeb(url))
        addLink(url, titleIn(contents, url).value_or(url.toDisplayString()));
      else
        addLines(text, tr("The text"));
    } catch (const RunTimeError& error) {
      result_.problems.append(error.message());
    }
  }

  void addLines(const QString& text, const QString& name) {
    QStringList lines;
    for (const QStringView line : QStringView(text).split(u'\n'))
      if (const QStringView shown = line.trimmed(); !shown.isEmpty())
        lines.append(shown.toString());
    if (lines.isEmpty())
      throw RunTimeError(tr("%1: only blank").arg(name));
    if (qsizetype(result_.signs.size()) + lines.size() > MostDroppedSigns)
      throw RunTimeError(tr("%1: more than %2 lines").arg(name).arg(MostDroppedSigns));
    for (const QString& line : lines)
      add(queue_.makeTextSign(line));
  }

  QueueSource& queue_;
  const std::int64_t showings_;
  DroppedSigns result_;
};
} // namespace

std::optional<QString> dropRefusal(const QMimeData& contents) {
  if (hasAddresses(contents)) {
    const QList<QUrl> urls = contents.urls();
    if (urls.size() > MostDroppedAddresses)
      return tr("Only %1 files can be dropped at once").arg(MostDroppedAddresses);
    const bool isAnyUsable = std::any_of(urls.begin(), urls.end(), [](const QUrl& url) {
      return isOfWeb(url) ||
             (url.isLocalFile() && QFileInfo(url.toLocalFile()).size() <= MostDroppedFileBytes);
    });
    if (isAnyUsable || contents.hasImage())
      return std::nullopt;
    return bringsFiles(contents)
               ? tr("A file is larger than %1 MiB").arg(MostDroppedFileBytes >> 20)
               : QString();
  }
  return contents.hasImage() || contents.hasText() ? std::nullopt : std::optional(QString());
}

bool bringsFiles(const QMimeData& contents) {
  if (!contents.hasUrls())
    return false;
  const QList<QUrl> urls = contents.urls();
  return std::any_of(urls.begin(), urls.end(), [](const QUrl& url) { return url.isLocalFile(); });
}

std::vector<LoadedFile> loadFiles(const QList<QUrl>& urls, QSize room,
                                  const std::atomic<bool>& isStopped) {
  std::vector<LoadedFile> files;
  qint64 bytes = 0;
  for (const QUrl& url : urls) {
    if (isStopped)
      break;
    LoadedFile& file = files.emplace_back();
    file.url = url;
    if (!url.isLocalFile())
      continue;
    try {
      const QString path = url.toLocalFile();
      file.bytes = readPlainFile(path, MostDroppedFileBytes);
      if (file.bytes.isEmpty())
        throw RunTimeError(tr("%1: is empty").arg(shownName(path)));
      file.picture = decodePicture(file.bytes, room);
      if (!file.picture.isNull())
        file.bytes = QByteArray();
      bytes += file.bytes.size() + file.picture.sizeInBytes();
      if (bytes > MostDroppedBytes)
        throw RunTimeError(tr("%1: with the files before it larger than %2 MiB")
                               .arg(shownName(path))
                               .arg(MostDroppedBytes >> 20));
    } catch (const RunTimeError& error) {
      file.problem = error.message();
    } catch (const std::bad_alloc&) {
      file.problem = tr("%1: too large").arg(shownName(url.toLocalFile()));
    }
    if (!file.problem.isEmpty()) {
      file.bytes = QByteArray();
      file.picture = QImage();
    }
  }
  return files;
}

QSize pixelRoomFor(QSizeF pictureRoom) {
  const auto side = [](double points) {
    return points > 0 ? std::max(LeastPixelRoom, int(std::ceil(points * PixelsPerPoint)))
                      : MostPixelRoom;
  };
  return {side(pictureRoom.width()), side(pictureRoom.height())};
}

DroppedSigns readDrop(const QMimeData& contents, QueueSource& queue, std::int64_t showings) {
  return DropReader(queue, showings).read(contents);
}

DroppedSigns signsOfFiles(const std::vector<LoadedFile>& files, QueueSource& queue,
                          std::int64_t showings) {
  return DropReader(queue, showings).read(files);
}

} // namespace zq::app
