#include "views/Transitions.h"

namespace tarnwick {
namespace {

ui::Effects blurScale(double blur, double scale, Point offset, UnitPoint anchor) {
  return {.opacity = 0, .blur = blur, .scaleX = scale, .scaleY = scale, .offset = offset, .anchor = anchor};
}

}  // namespace

ui::Transition wing(double side) {
  return {.insertion = blurScale(6, 0.6, {-26 * side, 0}, UnitPoint::center),
      .removal = blurScale(4, 0.7, {-18 * side, 0}, UnitPoint::center),
      .insertionAnimation = notchOpen.delayed(0.06),
      .removalAnimation = easeIn(0.12)};
}

ui::Transition notchContent(double delay, UnitPoint anchor) {
  return {.insertion = blurScale(10, 0.86, {0, -8}, anchor),
      .removal = blurScale(6, 0.94, {}, anchor),
      .insertionAnimation = notchOpen.delayed(delay),
      .removalAnimation = easeOut(0.14)};
}

ui::Transition tabSlide(double direction) {
  const ui::Transition slide{.insertion = blurScale(8, 0.97, {40 * direction, 0}, UnitPoint::center),
      .removal = blurScale(8, 0.97, {-40 * direction, 0}, UnitPoint::center)};
  return slide.andPredecessor();
}

}  // namespace tarnwick
