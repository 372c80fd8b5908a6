#include "views/NotchRootView.h"

#include "base/L10n.h"
#include "ui/Dynamic.h"
#include "views/BannerView.h"
#include "views/ExpandedBody.h"
#include "views/NotchShape.h"
#include "views/TopStrip.h"
#include "views/Transitions.h"

namespace tarnwick {

using namespace ui;

namespace {

View glow(Color color, UnitPoint center, double radius) {
  return Rectangle().fill(radialGradient({color, color.opacity(0)}, center, radius));
}

/// The light that what is shown throws on the surface, or none.
View glowNow(const NotchModel& model) {
  const Presentation presentation = model.presentation();
  if (presentation == Presentation::banner) {
    return glow((*model.banner)->tint.opacity(0.25), {0.1, 0.75}, 220)
        .id("bannerGlow")
        .transition(Transition::opacity());
  }
  if (presentation == Presentation::expanded && model.tab == Tab::home && !model.media.title->empty() &&
      !model.isDraggingFiles) {
    Transition slowFade = Transition::opacity();
    slowFade.insertionAnimation = slowFade.removalAnimation = easeInOut(0.5);
    return glow(model.media.accent->opacity(0.32), {0.14, 0.62}, 300).id("homeGlow").transition(slowFade);
  }
  return {};
}

View glow(const NotchModel& model) {
  return observing([&model] { return glowNow(model); });
}

View banner(const NotchModel& model) {
  if (model.presentation() != Presentation::banner) return {};
  const Banner& shown = **model.banner;
  return bannerView(shown)
      .padding(Edge::top, model.notchSize->height)
      .id(shown.id.text())
      .transition(notchContent(0.06, UnitPoint::top));
}

View body(NotchModel& model, Namespace names, const TextMemory& notes) {
  if (model.presentation() != Presentation::expanded) return {};
  return expandedBody(model, names, notes)
      .padding(Edge::top, model.notchSize->height)
      .id("expanded")
      .transition(notchContent(0.07, UnitPoint::top));
}

View surface(NotchModel& model, Namespace names, const TextMemory& notes,
    const std::function<void()>& openSettings, bool roomForShadow) {
  const Presentation presentation = model.presentation();
  const Size size = model.size();
  const Shape shape = NotchShape(notchFlare, notchBottomRadius(presentation, model.isHovering));
  const bool expanded = presentation == Presentation::expanded;
  const bool casts = roomForShadow && (expanded || presentation == Presentation::banner);
  return ZStack(
      UnitPoint::top, {topStrip(model, names, openSettings), banner(model), body(model, names, notes)})
      .padding(Edge::horizontal, notchFlare)
      .foreground(white())
      .frame({.width = size.width, .height = size.height, .align = UnitPoint::top})
      .background(ZStack(UnitPoint::center, {Rectangle().fill(black()), glow(model)}))
      .clipShape(shape)
      .shadow(black(casts ? 0.35 : 0), 8, {0, 3})
      .shadow(black(casts ? 0.3 : 0), 26, {0, 10})
      .opacity(model.isSeen() ? 1 : 0)
      .contentShape(shape)
      .accessibility(
          expanded ? Role::none : Role::button, expanded ? "" : tr("Open Tarnwick", "Ouvrir Tarnwick"))
      .onKey([&model, expanded](const KeyEvent& event) {
        if (!expanded || event.key != Key::escape) return false;
        model.collapse();
        return true;
      })
      .onTap([&model] { withAnimation(notchOpen, [&] { model.followBanner(); }); }, !expanded)
      .id(surfaceId);
}

}  // namespace

View notchRootView(NotchModel& model, std::function<void()> openSettings, bool roomForShadow) {
  const Namespace names = Namespace::make();
  // What can be undone outlasts the page.
  const TextMemory notes = makeTextMemory();
  return observing([=, &model] {
    return VStack({}, {surface(model, names, notes, openSettings, roomForShadow)})
        .frame({.maxWidth = infinity, .maxHeight = infinity, .align = UnitPoint::top});
  });
}

}  // namespace tarnwick
