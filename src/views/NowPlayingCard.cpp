#include "views/NowPlayingCard.h"

#include "base/L10n.h"
#include "ui/Button.h"
#include "ui/Dynamic.h"
#include "views/ArtworkView.h"
#include "views/ButtonStyles.h"
#include "views/EqualizerBars.h"
#include "views/Scrubber.h"

namespace tarnwick {

using namespace ui;

namespace {

constexpr double artworkSize = 80, artworkRadius = 15;

View nothingPlaying() {
  return VStack({.spacing = 8},
      {
          Circle()
              .fill(white(0.06))
              .frame({.width = 52, .height = 52})
              .overlay(Symbol("music.note").font({20, Weight::medium}).foreground(white(0.4))),
          Text(tr("Nothing playing", "Rien en lecture")).font({12, Weight::medium}).foreground(white(0.45)),
      })
      .frame({.maxWidth = infinity, .maxHeight = infinity});
}

View artwork(MediaService& media, Namespace names) {
  const std::string name = tr("Open the source app", "Ouvrir l'app source");
  const View cover =
      artworkView(media, artworkSize, artworkRadius)
          .overlay(RoundedRectangle(artworkRadius).stroke(white(0.08), {.width = 1, .inside = true}));
  const View glow = artworkView(media, artworkSize, artworkRadius).blur(18).opacity(0.65).scaleEffect(1.05);
  const View block = observing([=, &media] {
    return ZStack(UnitPoint::center, {glow, cover.matchedGeometry("art", names)})
        .scaleEffect(media.playing ? 1 : 0.9)
        .animation(spring(0.45, 0.65), media.playing.get());
  });
  return hoverLift(block, 1.05)
      .contentShape(RoundedRectangle(artworkRadius))
      .onTap([&media] { media.openSourceApp(); })
      .accessibility(Role::button, name)
      .tooltip(name);
}

View line(const std::string& text, Font font, Color color) {
  return Text(text).font(font).foreground(color).contentTransition(ContentTransition::opacity);
}

View titles(const MediaService& media) {
  return observing([&media] {
    const View texts = VStack({.spacing = 2, .align = Align::leading},
        {
            line(media.title, {14, Weight::semibold}, white()),
            line(media.artist, {12, Weight::medium}, media.accent->opacity(0.9)),
        })
                           .animation(easeInOut(0.3), media.title.get());
    return HStack({.spacing = 8, .align = Align::top},
        {
            texts,
            Spacer(),
            equalizerBars(media.accent, media.playing, 5)
                .frame({.width = 24, .height = 16})
                .padding(Edge::top, 3),
        });
  });
}

View transportButton(
    std::string name, const char* symbol, Font font, ButtonStyle style, std::function<void()> action) {
  return Button({.name = std::move(name),
      .label = Symbol(symbol).font(font).contentTransition(ContentTransition::replace),
      .style = std::move(style),
      .action = std::move(action)});
}

View transport(MediaService& media) {
  return observing([&media] {
    const bool playing = media.playing;
    return HStack({.spacing = 10},
        {
            transportButton(tr("Previous", "Précédent"), "backward.fill", {15}, notchButtonStyle(34, 1.08),
                [&media] { media.previousTrack(); }),
            transportButton(playing ? tr("Pause", "Pause") : tr("Play", "Lecture"),
                playing ? "pause.fill" : "play.fill", {21}, notchButtonStyle(40, 1.1),
                [&media] { media.togglePlayPause(); }),
            transportButton(tr("Next", "Suivant"), "forward.fill", {15}, notchButtonStyle(34, 1.08),
                [&media] { media.nextTrack(); }),
        })
        .frame({.maxWidth = infinity});
  });
}

View playing(MediaService& media, Namespace names) {
  return HStack({.spacing = 14},
      {
          artwork(media, names),
          VStack({.spacing = 8, .align = Align::leading}, {titles(media), scrubber(media), transport(media)})
              .padding(Edge::vertical, 2),
      });
}

}  // namespace

View nowPlayingCard(MediaService& media, Namespace names) {
  return observing([&media, names] {
    return media.title->empty()
               ? nothingPlaying().id("nothing").transition(Transition::opacity())
               : playing(media, names).id("playing").transition(Transition::opacity());
  });
}

}  // namespace tarnwick
