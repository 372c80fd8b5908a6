#include "views/PermissionView.h"

#include <memory>

#include "base/L10n.h"
#include "base/VisibleText.h"
#include "claude/CallLines.h"
#include "ui/Button.h"
#include "ui/Dynamic.h"

namespace tarnwick {

using namespace ui;

namespace {

constexpr Size buttonSize{88, 29};
constexpr Color substituted = colors::orange;

/// How a kind of line is drawn: its sign, its colour and what is behind it.
struct Look {
  const char* sign = "";
  Color color = white(0.92);
  Color background = colors::clear;
};

Look lookOf(CallLine::Kind kind, bool isChange) {
  switch (kind) {
    case CallLine::Kind::plain:
      return {.sign = isChange ? "  " : ""};
    case CallLine::Kind::object:
      return {.color = white(0.6)};
    case CallLine::Kind::remark:
      return {.color = white(0.5)};
    case CallLine::Kind::removed:
      return {"− ", {1, 0.62, 0.58}, colors::red.opacity(0.16)};
    case CallLine::Kind::added:
      return {"+ ", {0.62, 0.93, 0.68}, colors::green.opacity(0.16)};
  }
  return {};
}

View linesView(const std::vector<CallLine>& lines) {
  bool isChange = false;
  for (const CallLine& line : lines) {
    isChange = isChange || line.kind == CallLine::Kind::removed || line.kind == CallLine::Kind::added;
  }
  std::vector<TextLine> drawn;
  std::string whole;
  for (const CallLine& line : lines) {
    const Look look = lookOf(line.kind, isChange);
    TextLine next{.pieces = {{look.sign, look.color}}, .background = look.background};
    whole += look.sign;
    for (VisiblePart& part : visibleParts(line.text)) {
      whole += part.text;
      next.pieces.push_back({std::move(part.text), part.isSubstitute ? substituted : look.color});
    }
    whole += '\n';
    drawn.push_back(std::move(next));
  }
  return ScrollView(
      Axis::vertical, TextLines(std::move(drawn)).font({11, Weight::regular, Design::monospaced}))
      .padding(Edge::horizontal, 8)
      .padding(Edge::vertical, 4)
      .frame({.maxWidth = infinity, .maxHeight = infinity})
      .background(RoundedRectangle(8).fill(white(0.06)))
      .accessibility(Role::text, whole);
}

ButtonStyle answerStyle(Color tint, double strength) {
  return [=](View label, bool pressed, bool hovering) {
    return label.frame({.width = buttonSize.width, .height = buttonSize.height})
        .contentShape(Capsule())
        .background(Capsule().fill(tint.opacity(
            strength + (pressed       ? 0.2
                           : hovering ? 0.1
                                      : 0))))
        .scaleEffect(pressed ? 0.95 : 1)
        .animation(spring(0.25, 0.7), std::pair(pressed, hovering));
  };
}

View answerButton(const std::string& name, const std::string& call, Color tint, double strength,
    std::function<void()> action) {
  return Button({.name = name + " " + call,
      .label = Text(name).font({12, Weight::semibold}),
      .style = answerStyle(tint, strength),
      .action = [action = std::move(action)] { withAnimation(notchOpen, action); }});
}

/// Lies before the buttons and takes the presses that come too soon, wherever they are released.
View tooSoon(const PermissionService& permissions, uint64_t number) {
  return Rectangle().fill(colors::clear).onPointer([&permissions, number](const PointerEvent& event) {
    return event.phase == PointerEvent::Phase::press && !permissions.takesAnswer(number);
  });
}

View buttons(PermissionService& permissions, const Session::Request& request) {
  const uint64_t number = request.number;
  const std::string call = request.tool + (request.detail.empty() ? "" : ": " + request.detail);
  return stateful(false, [=, &permissions](State<bool> settled) {
    return VStack({.spacing = 6},
        {answerButton(tr("Allow", "Autoriser"), call, colors::green, 0.3,
             [&permissions, number] { permissions.allow(number); }),
            answerButton(tr("Deny", "Refuser"), call, white(), 0.1,
                [&permissions, number] { permissions.deny(number); })})
        .arrowKeys(Axis::vertical)
        .overlay(tooSoon(permissions, number))
        .opacity(settled ? 1 : 0.3)
        .onAppear([&permissions, number, settled] {
          permissions.appeared(number);
          withAnimation(easeIn(PermissionService::settling), [&] { settled.set(true); });
        });
  });
}

}  // namespace

View permissionView(
    PermissionService& permissions, const Session::Request& request, const std::string& place) {
  const std::string id = std::to_string(request.number);
  // Made once: it may be long.
  const View lines = stateful(std::make_shared<View>(), [=, &permissions](State<std::shared_ptr<View>> made) {
    View& view = *made.get();
    if (view.isEmpty()) view = linesView(callLines(request.tool, permissions.input(request.number)));
    return view;
  });
  return HStack({.spacing = 10}, {lines.id(id), buttons(permissions, request).id(id + "@" + place)})
      .padding(Edge::horizontal, 10)
      .padding(Edge::bottom, 8)
      .frame({.height = permissionHeight});
}

}  // namespace tarnwick
