#include "ui/engine/Menus.h"

#include <algorithm>
#include <utility>

#include "ui/Beside.h"
#include "ui/Dynamic.h"
#include "ui/engine/HitTest.h"
#include "ui/engine/Host.h"
#include "ui/engine/Scene.h"

namespace tarnwick::ui {
namespace {

constexpr char menuKey[] = "menu";
constexpr double rowHeight = 24, gap = 4, margin = 6;
constexpr Color panelColor{0.16, 0.16, 0.17, 0.98}, highlight{0.04, 0.45, 0.95};

bool isChoice(const Node& node) {
  const auto& i = node.attributes.interaction;
  return i && i->role == Role::menuItem && i->onTap;
}

View separatorRow() {
  return Rectangle()
      .fill(white(0.12))
      .frame({.height = 1})
      .padding(Edge::horizontal, 8)
      .padding(Edge::vertical, 4);
}

}  // namespace

void Menus::open(std::vector<MenuItem> items, const Rect& anchor, Node& opener, bool byKey) {
  if (items.empty()) return;
  show(Open{std::move(items), anchor, opener, byKey});
  scene_.input().focusMenu(byKey);
  if (Host* host = scene_.host()) host->takeKeyboard();
}

void Menus::close() {
  if (!open_) return;
  const Open closed = *open_;
  show(std::nullopt);
  Node* const opener = closed.opener;
  const auto interaction = opener ? opener->attributes.interaction : nullptr;
  const bool isWrittenIn = interaction && interaction->role == Role::textField;
  if (opener) scene_.input().focus(*opener, closed.byKey);
  if (Host* host = scene_.host(); host && !isWrittenIn) host->giveBackKeyboard();
}

void Menus::show(std::optional<Open> open) {
  open_ = std::move(open);
  withAnimation(easeOut(0.12), [this] { changes_.notifyObservers(); });
}

void Menus::choose(Point point) {
  const auto found = hitTest::at(scene_.root(), point, isChoice);
  if (found.empty()) return;
  const auto interaction = found.front()->attributes.interaction;
  interaction->onTap();
}

void Menus::forgetVanished() {
  if (!open_) return;
  const Node* opener = open_->opener;
  if (!opener || !hitTest::takesInput(*opener)) close();
}

View Menus::view() {
  return observing([this] {
    changes_.noteRead();
    if (!open_) return View();
    // A press beside the menu closes it, and does nothing else.
    const View around =
        ZStack(UnitPoint::center, {})
            .frame({.maxWidth = infinity, .maxHeight = infinity})
            .onPointer([this](const PointerEvent& event) {
              if (event.phase == PointerEvent::Phase::press) close();
              return true;
            });
    const Size scene = scene_.size();
    return ZStack(UnitPoint::center,
        {around,
            Beside({.anchor = open_->anchor,
                       .surface = {0, 0, scene.width, scene.height},
                       .below = gap,
                       .above = gap,
                       .margin = margin,
                       .align = 0},
                panel())});
  });
}

std::optional<Rect> Menus::frame() const { return scene_.presentedFrame(menuKey); }

View Menus::panel() {
  const bool hasChecks = std::ranges::any_of(open_->items, &MenuItem::checked);
  Views rows;
  for (const MenuItem& item : open_->items) {
    rows.push_back(item.title.empty() ? separatorRow() : row(item, hasChecks));
  }
  return ScrollView(Axis::vertical, VStack({}, rows))
      .padding(5)
      .background(RoundedRectangle(9).fill(panelColor))
      .overlay(RoundedRectangle(9).stroke(white(0.14), {.width = 1, .inside = true}))
      .shadow(black(0.4), 10, {0, 4})
      .onPointer([](const PointerEvent&) { return true; })  // what cannot be chosen does nothing
      .arrowKeys(Axis::vertical)
      .modal()
      .onKey(Key::escape, [this] { close(); })
      .accessibility(Role::menu, {})
      .id(menuKey)
      .transition(Transition::opacity());
}

View Menus::row(const MenuItem& item, bool hasChecks) {
  return stateful(false, [this, item, hasChecks](State<bool> chosen) {
    View check;
    if (hasChecks) {
      check = Symbol("checkmark").font({9, Weight::bold}).opacity(item.checked ? 1 : 0).frame({.width = 14});
    }
    View line =
        HStack({.spacing = 5}, {check, Text(item.title).font({12, Weight::medium}), Spacer()})
            .foreground(white(item.enabled ? 0.92 : 0.35))
            .padding(Edge::horizontal, 8)
            .frame({.height = rowHeight, .maxWidth = infinity})
            .background(chosen ? RoundedRectangle(5).fill(highlight) : View())
            .onFocus(chosen)
            .accessibility(Role::menuItem, item.title);
    if (hasChecks) line = line.accessibilityChecked(item.checked);
    return line.onTap(
        [this, action = item.action] {
          close();
          if (action) action();
        },
        item.enabled);
  });
}

}  // namespace tarnwick::ui
