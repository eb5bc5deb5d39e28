// Parts of rollover buttons as pixels, kept for the next time that they are drawn.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QCache>
#include <QtCore/QRectF>
#include <QtCore/QVarLengthArray>
#include <QtGui/QImage>

#include <cstdint>
#include <functional>
#include <memory>

class QPainterPath;

namespace zq::platform {
class Color;
class GraphicsContext;
class Shadow;
} // namespace zq::platform

namespace zq {

// Everything that decides what a part looks like, but for where it is drawn.
class PictureKey {
 public:
  enum class Part : std::uint64_t { Body, Frame };
  explicit PictureKey(Part part) { add(std::uint64_t(part)); }

  void add(std::uint64_t number) { numbers_.append(number); }
  void add(double number);
  void add(const QPainterPath& path);
  // A part with a pattern, or with a colour that is null, for which another is in force, cannot be
  // kept.
  void add(const std::shared_ptr<platform::Color>& color);
  // As it is now; null is none.
  void add(const std::shared_ptr<platform::Shadow>& shadow);

  bool isComplete() const { return isComplete_; }

 private:
  friend class RollOverPictures;
  QByteArray bytes() const;

  QVarLengthArray<std::uint64_t, 192> numbers_;
  // The colours are told from others by their address, and live as long as the picture.
  QVarLengthArray<std::shared_ptr<platform::Color>, 6> colors_;
  bool isComplete_ = true;
};

// The pictures of all buttons, least recently used out first: buttons of one look and size share
// them. They are of the device's pixels, so that drawing one gives what drawing the part would.
//
// Thread: main.
class RollOverPictures {
 public:
  // What all pictures together may take.
  static constexpr qsizetype MaximumBytes = qsizetype(4) << 20;
  // A larger picture is not kept.
  static constexpr qint64 MaximumPixels = qint64(1) << 17;

  static RollOverPictures& shared();

  // Draws what `draw` draws in `area` of the current context, which it does with a context of the
  // same user space. False, and nothing done, where it has to be drawn as it is: by a painter that
  // does not make pixels, turned, half transparent, or with a shadow.
  bool draw(PictureKey& key, const QRectF& area, const std::function<void()>& draw);

  // How many pictures were made so far.
  std::uint64_t made() const { return made_; }

 private:
  struct Picture {
    QImage image;
    QVarLengthArray<std::shared_ptr<platform::Color>, 6> colors;
  };

  QCache<QByteArray, Picture> pictures_{MaximumBytes};
  std::uint64_t made_ = 0;
};

} // namespace zq
