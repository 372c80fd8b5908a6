#include "views/NotchShape.h"

#include <gtest/gtest.h>

namespace tarnwick {
namespace {

using Verb = ui::Path::Verb;

std::vector<ui::Path::Element> outline(Size size, double flare, double radius) {
  const ui::Shape shape = NotchShape(flare, radius);
  return shape.outline(size, shape.animated, shape.fixed).elements();
}

TEST(NotchShape, RunsFromEarToEar) {
  const auto path = outline({200, 32}, 6, 10);
  struct Step {
    Verb verb;
    Point control, end;
  };
  const Step expected[] = {
      {Verb::move, {}, {0, 0}},
      {Verb::quad, {6, 0}, {6, 6}},
      {Verb::line, {}, {6, 22}},
      {Verb::quad, {6, 32}, {16, 32}},
      {Verb::line, {}, {184, 32}},
      {Verb::quad, {194, 32}, {194, 22}},
      {Verb::line, {}, {194, 6}},
      {Verb::quad, {194, 0}, {200, 0}},
      {Verb::close, {}, {}},
  };
  ASSERT_EQ(path.size(), std::size(expected));
  for (size_t i = 0; i < path.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(path[i].verb, expected[i].verb);
    const bool quad = path[i].verb == Verb::quad;
    EXPECT_EQ(quad ? path[i].points[0] : Point{}, expected[i].control);
    EXPECT_EQ(path[i].points[quad ? 1 : 0], expected[i].end);
  }
}

TEST(NotchShape, RoundsCornersOnlyAsFarAsThereIsRoom) {
  struct {
    Size size;
    double radius, expected;
  } const cases[] = {
      {{200, 100}, 26, 26},
      {{40, 100}, 26, 14},
      {{200, 20}, 26, 14},
      {{10, 100}, 10, 0},
      {{200, 4}, 10, 0},
  };
  for (const auto& c : cases) {
    const auto path = outline(c.size, 6, c.radius);
    // From the end of the left side to the beginning of the bottom edge.
    EXPECT_EQ(c.size.height - path[2].points[0].y, c.expected) << c.size.width << " x " << c.size.height;
    EXPECT_EQ(path[3].points[1].x - 6, c.expected) << c.size.width << " x " << c.size.height;
  }
}

}  // namespace
}  // namespace tarnwick
