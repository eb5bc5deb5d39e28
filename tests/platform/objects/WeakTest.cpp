#include "zqticker/platform/objects/Weak.h"

#include <gtest/gtest.h>

#include <optional>

using zq::platform::Weak;
using zq::platform::WeakReferenced;

namespace {
struct Display : WeakReferenced {
  int value = 7;
};
} // namespace

TEST(Weak, IsNullByDefault) {
  const Weak<Display> weak;
  EXPECT_EQ(weak.get(), nullptr);
  EXPECT_FALSE(weak);
}

TEST(Weak, ReadsItsObjectWhileItLives) {
  Display display;
  const Weak<Display> weak(&display);
  ASSERT_EQ(weak.get(), &display);
  EXPECT_EQ(weak->value, 7);
}

TEST(Weak, ReadsNullOnceItsObjectOnTheStackHasGone) {
  std::optional<Display> display(std::in_place);
  const Weak<Display> weak(&*display);
  display.reset();
  EXPECT_EQ(weak.get(), nullptr);
}

TEST(Weak, ReadsNullOnceItsSharedObjectHasGone) {
  auto display = std::make_shared<Display>();
  const Weak<Display> weak(display);
  EXPECT_EQ(weak.get(), display.get());
  display.reset();
  EXPECT_EQ(weak.get(), nullptr);
}

TEST(Weak, DoesNotFollowACopyOfItsObject) {
  std::optional<Display> display(std::in_place);
  const Weak<Display> weak(&*display);
  const Display copy = *display;
  display.reset();
  EXPECT_EQ(weak.get(), nullptr);
  EXPECT_EQ(Weak<const Display>(&copy).get(), &copy);
}

TEST(Weak, StillRefersToAnObjectThatWasAssignedTo) {
  Display display;
  const Weak<Display> weak(&display);
  display = Display();
  EXPECT_EQ(weak.get(), &display);
}

TEST(Weak, ComparesByObjectAndAllDeadOnesAreEqual) {
  Display display;
  std::optional<Display> other(std::in_place);
  Weak<Display> toOther(&*other);
  EXPECT_EQ(Weak<Display>(&display), Weak<Display>(&display));
  EXPECT_FALSE(Weak<Display>(&display) == toOther);
  other.reset();
  EXPECT_EQ(toOther, Weak<Display>());
}
