#include <gtest/gtest.h>

#include "ui/Stage.h"

namespace tarnwick::ui {
namespace {

View box(double width, double height, const char* id) {
  return Rectangle().fill(white()).frame({.width = width, .height = height}).id(id);
}
View filling(const char* id) { return Rectangle().fill(white()).id(id); }

struct Case {
  const char* name;
  std::function<View()> view;
  std::vector<std::pair<const char*, Rect>> frames;
};

TEST(Layout, placesViews) {
  const std::vector<Case> cases{
      {"a row centres across and shares what is left among the flexible",
          [] {
            return HStack({.spacing = 10}, {box(50, 20, "a"), filling("b"), box(30, 40, "c"), filling("d")});
          },
          {{"a", {0, 140, 50, 20}}, {"b", {60, 0, 145, 300}}, {"c", {215, 130, 30, 40}},
              {"d", {255, 0, 145, 300}}}},
      {"a spacer pushes to the end",
          [] {
            return HStack({}, {box(50, 20, "a"), Spacer(), box(30, 20, "b")});
          },
          {{"a", {0, 140, 50, 20}}, {"b", {370, 140, 30, 20}}}},
      {"what has priority gets what it wants first",
          [] {
            return HStack({}, {filling("a"), filling("b").frame({.maxWidth = 300}).prioritized()});
          },
          {{"a", {0, 0, 100, 300}}, {"b", {100, 0, 300, 300}}}},
      {"a column aligns at the leading edge",
          [] {
            return VStack({.spacing = 4, .align = Align::leading}, {box(50, 20, "a"), box(30, 40, "b")})
                .frame({.width = 100, .height = 64, .align = UnitPoint::topLeading})
                .frame({.maxWidth = infinity, .maxHeight = infinity, .align = UnitPoint::bottomTrailing});
          },
          {{"a", {300, 236, 50, 20}}, {"b", {300, 260, 30, 40}}}},
      {"nothing takes no place and no spacing",
          [] {
            return HStack({.spacing = 10},
                {box(50, 20, "a"), View(), observing([] { return View(); }), box(30, 20, "b"), Spacer()});
          },
          {{"b", {60, 140, 30, 20}}}},
      {"a sideways list is as high as its content, and scrolls what is wider",
          [] {
            return VStack({},
                {ScrollView(Axis::horizontal, HStack({}, {box(300, 20, "a"), box(300, 30, "b")})),
                    filling("c")});
          },
          {{"a", {0, 5, 300, 20}}, {"b", {300, 0, 300, 30}}, {"c", {0, 30, 400, 270}}}},
      {"padding, background and overlay",
          [] {
            return box(50, 20, "a")
                .padding(Edge::horizontal, 5)
                .padding(Edge::top, 2)
                .background(filling("b"))
                .overlay(box(10, 10, "c"), UnitPoint::topTrailing)
                .frame({.maxWidth = infinity, .maxHeight = infinity, .align = UnitPoint::topLeading});
          },
          {{"a", {5, 2, 50, 20}}, {"b", {0, 0, 60, 22}}, {"c", {50, 0, 10, 10}}}},
      {"an aspect ratio fits",
          [] {
            return filling("a").aspectRatio(2).frame({.width = 100, .height = 80, .align = UnitPoint::top});
          },
          {{"a", {150, 110, 100, 50}}}},
      {"layers align in the largest",
          [] {
            return ZStack(UnitPoint::bottomLeading, {box(50, 60, "a"), box(20, 10, "b")})
                .frame({.width = 50, .height = 60});
          },
          {{"a", {175, 120, 50, 60}}, {"b", {175, 170, 20, 10}}}},
  };
  for (const Case& test : cases) {
    Stage stage([&] { return test.view().frame({.maxWidth = infinity, .maxHeight = infinity}); });
    for (const auto& [id, frame] : test.frames) {
      const auto found = stage.inspect.id(id);
      ASSERT_TRUE(found) << test.name << ": " << id;
      const Rect f = found->frame();
      EXPECT_NEAR(f.x, frame.x, 0.01) << test.name << ": " << id;
      EXPECT_NEAR(f.y, frame.y, 0.01) << test.name << ": " << id;
      EXPECT_NEAR(f.width, frame.width, 0.01) << test.name << ": " << id;
      EXPECT_NEAR(f.height, frame.height, 0.01) << test.name << ": " << id;
    }
  }
}

TEST(Layout, nothingDecoratedIsNothing) {
  const View nothing;
  for (const View& view : {nothing.frame({.width = 9}), nothing.padding(9), nothing.aspectRatio(1),
           nothing.background(filling("")), nothing.overlay(filling("")), nothing.opacity(0.5),
           nothing.opacity(0.5).opacity(0.5), nothing.clipShape(Circle()), nothing.shadow(black(), 9),
           nothing.font({9}), nothing.id("id"), nothing.transition(Transition::opacity()),
           nothing.matchedGeometry("id", Namespace::make()), nothing.pulse(), nothing.onTap([] {}),
           nothing.accessibility(Role::button, "name"), Group(nothing)}) {
    EXPECT_TRUE(view.isEmpty());
  }
}

TEST(Layout, textBaselinesAlign) {
  Stage stage([] {
    return HStack({.spacing = 6, .align = Align::firstTextBaseline},
        {Text("22").font({20, Weight::bold}).id("large"), Text("Sunday").font({11}).id("small")});
  });
  const Rect large = stage.inspect.id("large")->frame(), small = stage.inspect.id("small")->frame();
  EXPECT_GT(small.y, large.y + 4);
  EXPECT_LT(small.bottom(), large.bottom());
}

TEST(Layout, longTextsGiveWayToWhatCannot) {
  Stage stage([] {
    return HStack({.spacing = 5}, {Text(std::string(200, 'm')).id("text"), Spacer(), box(80, 10, "fixed")})
        .frame({.width = 200});
  });
  EXPECT_NEAR(stage.inspect.id("fixed")->frame().right(), 300, 0.1);
  EXPECT_LE(stage.inspect.id("text")->frame().width, 115);
}

TEST(Layout, digitsKeepTheirWidth) {
  Stage stage([] {
    return VStack({}, {Text("1:11").monospacedDigits().id("a"), Text("0:00").monospacedDigits().id("b")});
  });
  EXPECT_EQ(stage.inspect.id("a")->frame().width, stage.inspect.id("b")->frame().width);
}

TEST(Layout, buildsOnlyRowsInView) {
  size_t built = 0;
  const auto rows = [&] {
    return ScrollView(Axis::vertical,
        LazyVStack({.count = 1000,
            .length = 40,
            .spacing = 2,
            .key = [](size_t i) { return "row" + std::to_string(i); },
            .item =
                [&](size_t i) {
                  ++built;
                  return Text(std::to_string(i));
                }}))
        .frame({.width = 300, .height = 84})
        .id("list");
  };
  Stage stage(rows);
  EXPECT_LE(built, 10u);
  EXPECT_TRUE(stage.inspect.id("row0"));
  EXPECT_FALSE(stage.inspect.id("row500"));
  const auto list = stage.inspect.id("list");
  ASSERT_TRUE(stage.inspect.scroll(*list, {0, -42.0 * 500}));
  stage.scene.frame();
  ASSERT_TRUE(stage.inspect.id("row500"));
  EXPECT_NEAR(stage.inspect.id("row500")->frame().y, stage.inspect.id("list")->frame().y, 0.1);
  EXPECT_FALSE(stage.inspect.id("row0"));
  EXPECT_LE(built, 40u);
  EXPECT_TRUE(stage.inspect.scroll(*stage.inspect.id("list"), {0, -1e9}));
  EXPECT_FALSE(stage.inspect.scroll(*stage.inspect.id("list"), {0, -10}));
}

TEST(Layout, ListsHaveOneItemThatIsLonger) {
  const auto place = [](size_t longer, double scrolled) {
    Stage stage(ScrollView(Axis::vertical,
        LazyVStack({.count = 100,
            .length = 40,
            .longer = longer,
            .excess = 200,
            .spacing = 2,
            .key = [](size_t i) { return "row" + std::to_string(i); },
            .item = [](size_t) { return Rectangle().fill(white()); }}))
                    .frame({.width = 300, .height = 84})
                    .id("list"));
    stage.inspect.scroll(*stage.inspect.id("list"), {0, -scrolled});
    stage.scene.frame();
    const double top = stage.inspect.id("list")->frame().y;
    std::vector<std::pair<std::string, std::pair<double, double>>> seen;
    for (const auto& row : stage.inspect.all([](const auto& node) { return node.id().starts_with("row"); })) {
      const Rect frame = row.frame();
      if (frame.bottom() > top && frame.y < top + 84)
        seen.push_back({row.id(), {frame.y - top, frame.height}});
    }
    return seen;
  };
  using Seen = std::vector<std::pair<std::string, std::pair<double, double>>>;
  EXPECT_EQ(place(1, 0), (Seen{{"row0", {0, 40}}, {"row1", {42, 240}}}));
  EXPECT_EQ(place(50, 50 * 42 + 190), (Seen{{"row50", {-190, 240}}, {"row51", {52, 40}}}));
  EXPECT_EQ(place(0, 1e9), (Seen{{"row98", {2, 40}}, {"row99", {44, 40}}}));
}

TEST(Layout, WrapsLinesThatAreReadToTheLetter) {
  const View hundred =
      HStack({}, {Text(std::string(100, 'x')).font({11, Weight::regular, Design::monospaced}).id("x")});
  const double cell = Stage(hundred, {2000, 300}).inspect.id("x")->frame().width / 100;
  const auto heightOf = [&](std::string text) {
    Stage stage(VStack({},
        {TextLines({{{{std::move(text)}}}})
                .font({11, Weight::regular, Design::monospaced})
                .frame({.width = std::ceil(cell * 20)})
                .id("x")}));
    return stage.inspect.id("x")->frame().height;
  };
  const double line = heightOf("x");
  const std::pair<std::string, int> cases[] = {
      {"", 1},
      {std::string(20, 'x'), 1},
      {std::string(21, ' '), 2},
      // What goes on is indented by two.
      {std::string(20 + 18, 'x'), 2},
      {std::string(20 + 18 + 1, 'x'), 3},
      {"!= => -> === !== <=> a", 2},
      // Wide ones take more.
      {"😀😀😀😀😀😀😀😀😀😀😀😀", 2},
  };
  for (const auto& [text, lines] : cases) EXPECT_EQ(heightOf(text), lines * line) << text;
}

}  // namespace
}  // namespace tarnwick::ui
