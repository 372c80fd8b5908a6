#pragma once
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "ui/View.h"

namespace tarnwick::ui {

/// What every kind of view can carry besides its own content.
struct Attributes {
  struct Match {
    std::string id;
    Namespace names;
    friend bool operator==(const Match&, const Match&) = default;
  };
  struct Shadow {
    Color color;
    double radius;
    Point offset;
    friend bool operator==(const Shadow&, const Shadow&) = default;
  };
  struct Bounce {
    AnyValue value;
    bool onAppear;
  };

  std::string key;
  Effects effects;
  /// Which of the effects were set, as a sum of `EffectKind`s.
  unsigned effectKinds = 0;
  std::optional<Shape> clip;
  std::vector<Shadow> shadows;
  std::vector<std::pair<Animation, AnyValue>> animations;
  std::optional<Transition> transition;
  std::optional<Match> match;
  std::optional<Bounce> bounce;
  std::optional<Font> font;
  std::optional<Color> foreground;
  std::optional<Truncation> truncation;
  std::optional<ContentTransition> contentTransition;
  bool monospacedDigits = false;
  std::shared_ptr<const Interaction> interaction;
  std::function<void()> onAppear;
};

/// What a `View` holds: shared and never changed once it is.
struct Description {
  std::shared_ptr<const Element> element;
  std::vector<View> children;
  Attributes attributes;
};

template<typename Change>
View View::with(Change change) const {
  if (isEmpty()) return *this;
  auto copy = std::make_shared<Description>(*description_);
  change(copy->attributes);
  View view;
  view.description_ = std::move(copy);
  return view;
}

}  // namespace tarnwick::ui
