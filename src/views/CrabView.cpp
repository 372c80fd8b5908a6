#include "views/CrabView.h"

#include <array>
#include <cmath>
#include <string_view>

#include "ui/Canvas.h"
#include "ui/Dynamic.h"

namespace tarnwick {
namespace {

constexpr double gridWidth = 16, gridHeight = 10;
/// The sparkle's as well: the two are often on the screen together, and then share each frame.
constexpr double redrawInterval = 0.1;
/// A moment at which the eyes are open: the idle mascot is a still picture.
constexpr double stillMoment = 1;

/// From the second column of the grid; E is an eye.
constexpr std::array<std::string_view, 5> body{
    "..##########..",
    "..##E####E##..",
    "..##E####E##..",
    "..##########..",
    "..##########..",
};
constexpr size_t upperEyeRow = 1;
constexpr std::array legColumns{4, 6, 9, 11};

struct Pose {
  double dx = 0, dy = 2;
  int clawRow = 2;
  /// The right claw, and the legs that lift, change places with the left ones eight times a second.
  bool secondStep = false;
  bool eyesOpen = true;
};

Pose poseOf(CrabMood mood, double t) {
  Pose pose;
  pose.secondStep = std::fmod(std::floor(t * 8), 2) != 0;
  pose.eyesOpen = mood != CrabMood::happy && std::fmod(t, 4.2) >= 0.14;
  if (mood == CrabMood::working) pose.dx = std::sin(5 * t) * 0.6;
  if (mood == CrabMood::waiting) {
    pose.dy -= 0.6 * std::abs(std::sin(6 * t));
    pose.clawRow = 1;
  }
  if (mood == CrabMood::happy) pose.dy -= 1.8 * std::abs(std::sin(7 * t));
  return pose;
}

/// Whether the lower half of the leg is on the ground.
bool legIsDown(CrabMood mood, size_t leg, bool secondStep) {
  if (mood == CrabMood::happy) return false;
  if (mood == CrabMood::working) return (leg % 2 != 0) != secondStep;
  return true;
}

}  // namespace

std::vector<CrabCell> crabCells(CrabMood mood, double seconds) {
  const Pose pose = poseOf(mood, seconds);
  std::vector<CrabCell> cells;
  const auto add = [&](double column, double row, bool black = false) {
    cells.push_back({column + pose.dx, row + pose.dy, black});
  };

  for (size_t row = 0; row < body.size(); ++row) {
    for (size_t column = 0; column < body[row].size(); ++column) {
      const char cell = body[row][column];
      if (cell == '.') continue;
      add(double(column) + 1, double(row), cell == 'E' && (row != upperEyeRow || pose.eyesOpen));
    }
  }
  const bool waves = mood == CrabMood::waiting && pose.secondStep;
  for (const int column : {1, 2}) add(column, pose.clawRow);
  for (const int column : {13, 14}) add(column, pose.clawRow - (waves ? 1 : 0));
  for (size_t leg = 0; leg < legColumns.size(); ++leg) {
    add(legColumns[leg], 5);
    if (legIsDown(mood, leg, pose.secondStep)) add(legColumns[leg], 6);
  }
  return cells;
}

Rect crabCellRect(const CrabCell& cell, Size canvas) {
  const double side = std::min(canvas.width / gridWidth, canvas.height / gridHeight);
  // Neighbours overlap a little, so that no seam shows between them.
  constexpr double overlap = 0.3;
  return {(canvas.width - gridWidth * side) / 2 + side * cell.column,
      (canvas.height - gridHeight * side) / 2 + side * cell.row, side + overlap, side + overlap};
}

ui::View crabView(CrabMood mood) {
  const bool still = mood == CrabMood::idle;
  const auto picture = [=](Date now) {
    std::vector<CrabCell> cells = crabCells(mood, still ? stillMoment : now.secondsSince1970);
    return ui::CanvasView(cells, [cells](ui::Canvas& canvas, Size size) {
      for (const CrabCell& cell : cells) {
        canvas.fill(crabCellRect(cell, size), cell.black ? black() : crabOrange);
      }
    });
  };
  return ui::timeline(redrawInterval, still, picture).aspectRatio(1.4);
}

}  // namespace tarnwick
