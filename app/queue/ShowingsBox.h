// A field for how often a sign is shown.
#pragma once

#include <QtWidgets/QSpinBox>

#include <cstdint>

namespace zq::app {

// A number from 1 on, or below it "∞" for without end.
class ShowingsBox : public QSpinBox {
  Q_OBJECT

 public:
  static constexpr int MostShowings = 99'999;

  // Without end at first.
  explicit ShowingsBox(QWidget* parent = nullptr);
  ~ShowingsBox() override;

  // -1 for without end.
  std::int64_t showings() const { return value() == 0 ? -1 : value(); }
  void setShowings(std::int64_t showings);
};

} // namespace zq::app
