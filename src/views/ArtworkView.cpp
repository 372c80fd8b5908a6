#include "views/ArtworkView.h"

#include "ui/Dynamic.h"

namespace tarnwick {

using namespace ui;

namespace {

View picture(const MediaService& media, double size, double radius) {
  if (media.artwork.get()) {
    return ImageView(**media.artwork, ContentMode::fill)
        .contentTransition(ContentTransition::opacity)
        .id("artwork")
        .transition(Transition::opacity());
  }
  if (media.appIcon.get()) {
    return ImageView(**media.appIcon)
        .contentTransition(ContentTransition::opacity)
        .padding(0.08 * size)
        .id("icon")
        .transition(Transition::opacity());
  }
  return RoundedRectangle(radius)
      .fill(white(0.12))
      .overlay(Symbol("music.note").font({0.35 * size}).foreground(white(0.5)))
      .id("note")
      .transition(Transition::opacity());
}

}  // namespace

View artworkView(const MediaService& media, double size, double radius) {
  return observing([&media, size, radius] {
    return ZStack(UnitPoint::center, {picture(media, size, radius)})
        .frame({.width = size, .height = size})
        .clipShape(RoundedRectangle(radius))
        .animation(easeInOut(0.35), media.artwork.get())
        .animation(easeInOut(0.35), media.appIcon.get());
  });
}

}  // namespace tarnwick
