#include "zqticker/rollover/shading.h"

#include "zqticker/platform/graphics/BezierPath.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/GraphicsContext.h"
#include "zqticker/platform/graphics/VerticalShading.h"

#include <QtCore/QByteArray>

#include <array>

using namespace zq::platform;

namespace zq {

namespace {

// First colour, second colour, second minus first; red, green, blue and alpha of each.
using ColorTable = std::array<double, 12>;
constexpr std::size_t channels = 4;

bool hasDeviceRGB(const Ref<Color>& color) {
  return color && color->space() != Color::Space::Pattern &&
         (!color->fallback() || hasDeviceRGB(color->fallback()));
}

std::array<double, channels> deviceRGB(const Ref<Color>& color) {
  if (!hasDeviceRGB(color))
    return {};
  return {color->redComponent(), color->greenComponent(), color->blueComponent(),
          color->alphaComponent()};
}

ColorTable tableOf(const Ref<Color>& firstColor, const Ref<Color>& secondColor) {
  const auto first = deviceRGB(firstColor);
  const auto second = deviceRGB(secondColor);
  ColorTable table;
  for (std::size_t i = 0; i < channels; ++i) {
    table[i] = first[i];
    table[channels + i] = second[i];
    table[2 * channels + i] = second[i] - first[i];
  }
  return table;
}

void fill(const Ref<BezierPath>& path, const FunctionCallbacks& callbacks, const ColorTable& table,
          const QByteArray& identifier) {
  GraphicsContext* context = GraphicsContext::currentContext();
  if (!context || !path || !callbacks.evaluate)
    return;
  // Shared, since a recording evaluates it again for each showing.
  const std::shared_ptr<ColorTable> info(new ColorTable(table),
                                         [release = callbacks.releaseInfo](ColorTable* done) {
                                           if (release)
                                             release(done->data());
                                           delete done;
                                         });
  const auto colorAt = [info, evaluate = callbacks.evaluate](double t) {
    std::array<double, channels> color{};
    evaluate(info->data(), &t, color.data());
    return color;
  };
  context->fillPathWithShading(path->painterPath(), {colorAt, identifier});
}

// Fills with a function of our own, whose rows may be kept: the same table gives the same colours.
void fillWithKeptRows(const Ref<BezierPath>& path, const FunctionCallbacks& callbacks, char name,
                      const ColorTable& table) {
  QByteArray identifier(1, name);
  identifier.append(reinterpret_cast<const char*>(table.data()),
                    2 * channels * sizeof(ColorTable::value_type));
  fill(path, callbacks, table, identifier);
}

// Sets `out` to the colour of `table` at `u` of the way from the first to the second.
void mix(const double* table, double u, double* out) {
  for (std::size_t i = 0; i < channels; ++i)
    out[i] = table[i] + u * table[2 * channels + i];
}

} // namespace

void linearShadedColor(void* info, const double* in, double* out) {
  mix(static_cast<const double*>(info), *in, out);
}

void bilinearShadedColor(void* info, const double* in, double* out) {
  const double t = *in;
  mix(static_cast<const double*>(info), t > 0.5 ? 2 - 2 * t : 2 * t, out);
}

void customVerticalFillWithCallbacks(const Ref<BezierPath>& path, FunctionCallbacks callbacks,
                                     const Ref<Color>& firstColor, const Ref<Color>& secondColor) {
  fill(path, callbacks, tableOf(firstColor, secondColor), {});
}

void linearGradientFillWithStartColor(const Ref<BezierPath>& path, const Ref<Color>& startColor,
                                      const Ref<Color>& endColor) {
  static constexpr FunctionCallbacks callbacks{0, linearShadedColor, nullptr};
  fillWithKeptRows(path, callbacks, 'l', tableOf(startColor, endColor));
}

void bilinearGradientFillWithOuterColor(const Ref<BezierPath>& path, const Ref<Color>& outerColor,
                                        const Ref<Color>& innerColor) {
  static constexpr FunctionCallbacks callbacks{0, bilinearShadedColor, nullptr};
  // Crossed on purpose: the outer colour is the second one, which lies in the middle. Every
  // bilinear button would turn inside out if the two went in the order of their names.
  fillWithKeptRows(path, callbacks, 'b', tableOf(innerColor, outerColor));
}

} // namespace zq
