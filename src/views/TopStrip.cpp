#include "views/TopStrip.h"

#include <algorithm>

#include "base/L10n.h"
#include "ui/Button.h"
#include "ui/Dynamic.h"
#include "views/ArtworkView.h"
#include "views/BatteryLabel.h"
#include "views/ButtonStyles.h"
#include "views/ClaudeStatusGlyph.h"
#include "views/CrabView.h"
#include "views/EqualizerBars.h"
#include "views/NotchShape.h"
#include "views/TabBar.h"
#include "views/TransientLeft.h"
#include "views/TransientRight.h"
#include "views/Transitions.h"

namespace tarnwick {

using namespace ui;

namespace {

constexpr double left = -1, right = 1;

View wingCrab(View crab, Namespace names) {
  return crab.frame({.width = 28, .height = 20}).matchedGeometry("crab", names);
}

View bannerIcon(const Banner& banner) {
  return Symbol(banner.icon).font({13, Weight::bold}).foreground(banner.tint);
}

View settingsButton(double stripHeight, std::function<void()> openSettings) {
  constexpr double size = 28, margin = 1;
  const std::string name = tr("Settings", "Réglages");
  return Button(
      {.name = name,
          .label = Symbol("gearshape.fill").font({12}).foreground(white(0.6)),
          .style = notchButtonStyle(std::min(size, stripHeight - 2 * margin), 1.08),
          .action = std::move(openSettings)})
      .tooltip(name);
}

View expandedRight(const PowerService& power, double stripHeight, std::function<void()> openSettings) {
  return observing([=, &power] {
    View battery;
    if (power.hasBattery) {
      battery = batteryLabel(power.level, power.pluggedIn).foreground(white(0.85));
    }
    return HStack({.spacing = 6}, {battery, settingsButton(stripHeight, openSettings)});
  });
}

View leftWing(NotchModel& model, Namespace names) {
  switch (model.presentation()) {
    case Presentation::idle:
      return {};
    case Presentation::claude:
      return wingCrab(statusCrab(model.claude), names).id("claude").transition(wing(left));
    case Presentation::nowPlaying:
      return artworkView(model.media, 22, 6)
          .matchedGeometry("art", names)
          .id("nowPlaying")
          .transition(wing(left));
    case Presentation::transient: {
      const Transient& shown = **model.transient;
      return transientLeft(shown).id(shown.key()).transition(wing(left));
    }
    case Presentation::banner: {
      const Banner& shown = **model.banner;
      const View item = shown.crab ? wingCrab(crabView(*shown.crab), names) : bannerIcon(shown);
      return item.id(shown.crab ? "bannerCrab" : "bannerIcon").transition(wing(left));
    }
    case Presentation::expanded:
      return tabBar(model, names).id("expanded").transition(notchContent(0.04, UnitPoint::leading));
  }
  return {};
}

View rightWing(NotchModel& model, const std::function<void()>& openSettings) {
  switch (model.presentation()) {
    case Presentation::idle:
      return {};
    case Presentation::claude:
      return claudeStatusGlyph(model.claude).id("claude").transition(wing(right));
    case Presentation::nowPlaying:
      return observing([&media = model.media] { return equalizerBars(media.accent, media.isPlaying(), 4); })
          .frame({.width = 20, .height = 14})
          .id("nowPlaying")
          .transition(wing(right));
    case Presentation::transient: {
      const Transient& shown = **model.transient;
      return transientRight(shown).id(shown.key()).transition(wing(right));
    }
    case Presentation::banner: {
      const Banner& shown = **model.banner;
      return bannerIcon(shown).bounce(shown.id).id("banner").transition(wing(right));
    }
    case Presentation::expanded:
      return expandedRight(model.power, model.notchSize->height, openSettings)
          .id("expanded")
          .transition(notchContent(0.04, UnitPoint::trailing));
  }
  return {};
}

}  // namespace

View topStrip(NotchModel& model, Namespace names, std::function<void()> openSettings) {
  const double width = std::max(0.0, (model.size().width - 2 * notchFlare - model.notchSize->width) / 2);
  const bool expanded = model.presentation() == Presentation::expanded;
  const double margin = expanded ? 14 : 10;
  // Beside the widest cameras the tab bar moves outwards rather than under the camera.
  const double leftMargin = expanded ? std::min(margin, width - tabBarWidth) : margin;
  // The stacks stay while their items come and go, so that an item's transition has a place to happen in.
  const auto box = [=](View item, Edge outside, double inset, UnitPoint align) {
    return ZStack(align, {item}).padding(outside, inset).frame({.width = width, .align = align});
  };
  return HStack({},
      {
          box(leftWing(model, names), Edge::leading, leftMargin, UnitPoint::leading),
          Spacer(),
          box(rightWing(model, openSettings), Edge::trailing, margin, UnitPoint::trailing),
      })
      .frame({.height = model.notchSize->height});
}

}  // namespace tarnwick
