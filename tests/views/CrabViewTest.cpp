#include "views/CrabView.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace tarnwick {
namespace {

/// Draws the cells on the grid, shifted back by (dx, dy): '#' orange, 'E' black.
std::vector<std::string> grid(CrabMood mood, double seconds, double dx, double dy) {
  std::vector<std::string> rows(8, std::string(16, '.'));
  for (const CrabCell& cell : crabCells(mood, seconds)) {
    const double column = cell.column - dx, row = cell.row - dy;
    EXPECT_NEAR(column, std::round(column), 1e-9);
    EXPECT_NEAR(row, std::round(row), 1e-9);
    rows.at(size_t(std::round(row))).at(size_t(std::round(column))) = cell.black ? 'E' : '#';
  }
  return rows;
}

TEST(Crab, TakesThePoseOfItsMood) {
  struct {
    CrabMood mood;
    double seconds, dx, dy;
    std::vector<std::string> expected;
  } const cases[] = {
      {CrabMood::working, 1.0, 0.6 * std::sin(5.0), 2,
          {
              "...##########...",
              "...##E####E##...",
              ".####E####E####.",
              "...##########...",
              "...##########...",
              "....#.#..#.#....",
              "......#....#....",
              "................",
          }},
      {CrabMood::waiting, 1.125, 0, 2 - 0.6 * std::abs(std::sin(6.75)),
          {
              "...############.",
              ".####E####E##...",
              "...##E####E##...",
              "...##########...",
              "...##########...",
              "....#.#..#.#....",
              "....#.#..#.#....",
              "................",
          }},
      {CrabMood::happy, 1.0, 0, 2 - 1.8 * std::abs(std::sin(7.0)),
          {
              "...##########...",
              "...##########...",
              ".####E####E####.",
              "...##########...",
              "...##########...",
              "....#.#..#.#....",
              "................",
              "................",
          }},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(grid(c.mood, c.seconds, c.dx, c.dy), c.expected) << int(c.mood) << " at " << c.seconds;
  }
  const auto legs = [](CrabMood mood, double seconds, double dx) { return grid(mood, seconds, dx, 2)[6]; };
  EXPECT_EQ(legs(CrabMood::working, 1.125, 0.6 * std::sin(5.625)), "....#....#......") << "the other legs";
  EXPECT_EQ(legs(CrabMood::idle, 1, 0), "....#.#..#.#....");
}

TEST(Crab, BlinksNowAndThen) {
  const auto blackCells = [](CrabMood mood, double seconds) {
    return std::ranges::count_if(crabCells(mood, seconds), &CrabCell::black);
  };
  EXPECT_EQ(blackCells(CrabMood::working, 4.2 * 3 + 0.1), 2);
  EXPECT_EQ(blackCells(CrabMood::working, 4.2 * 3 + 0.15), 4);
  EXPECT_EQ(blackCells(CrabMood::working, 4.2 * 3 - 0.1), 4);
  EXPECT_EQ(blackCells(CrabMood::happy, 1), 2);
}

TEST(Crab, IsCentredOnItsCanvas) {
  struct {
    Size canvas;
    Rect expected;
  } const cases[] = {
      {{28, 20}, {1.75, 1.25 + 1.75, 2.05, 2.05}},
      {{52, 32}, {0.4 + 3.2, 3.2, 3.5, 3.5}},
  };
  for (const auto& c : cases) {
    const Rect rect = crabCellRect({1, 1, false}, c.canvas);
    EXPECT_NEAR(rect.x, c.expected.x, 1e-9);
    EXPECT_NEAR(rect.y, c.expected.y, 1e-9);
    EXPECT_NEAR(rect.width, c.expected.width, 1e-9);
    EXPECT_NEAR(rect.height, c.expected.height, 1e-9);
  }
}

}  // namespace
}  // namespace tarnwick
