#include <gtest/gtest.h>

#include <QImage>
#include <random>

#include "ui/Canvas.h"
#include "ui/Stage.h"
#include "ui/paint/Painter.h"

namespace tarnwick::ui {
namespace {

int alphaAt(const QImage& image, int x, int y) { return qAlpha(image.pixel(x, y)); }

TEST(Painting, clipsWithSmoothEdges) {
  Stage stage(
      [] { return Rectangle().fill(white()).frame({.width = 100, .height = 100}).clipShape(Circle()); });
  const QImage image = picture(stage.scene);
  EXPECT_EQ(alphaAt(image, 200, 150), 255);
  EXPECT_EQ(alphaAt(image, 152, 102), 0) << "the corner is cut";
  int soft = 0;
  for (int x = 150; x < 250; ++x) soft += alphaAt(image, x, 115) > 0 && alphaAt(image, x, 115) < 255;
  EXPECT_GE(soft, 2);
}

TEST(Painting, aSceneOfAnotherSizeAndRatioLooksAsIfMadeForIt) {
  const auto view = [] {
    return Text("middle")
        .background(Capsule().fill(white(0.5)))
        .frame({.maxWidth = infinity, .maxHeight = infinity});
  };
  Stage stage(view);
  stage.scene.takeDamage();
  stage.scene.resize({260.5, 90});
  stage.scene.setPixelRatio(1.5);
  stage.scene.frame();
  Stage made(view(), {260.5, 90}, 1.5);
  EXPECT_EQ(picture(stage.scene).size(), QSize(391, 135));
  EXPECT_EQ(picture(stage.scene), picture(made.scene));
  Rect damage;
  for (const Rect& area : stage.scene.takeDamage()) damage = damage.united(area);
  EXPECT_EQ(damage, (Rect{0, 0, 400, 300})) << "also what it no longer covers";
}

TEST(Painting, whatEntersClippedAndBlurredIsClippedFirst) {
  bool shown = false;
  Stage stage([&] {
    const View tall = Rectangle().fill(white()).frame({.width = 100, .height = 300});
    const View clipped = tall.frame({.width = 100, .height = 40}).clipShape(RoundedRectangle(10));
    return ZStack(UnitPoint::center, {shown ? clipped.transition({.insertion = {.blur = 8}}) : View()});
  });
  stage.change([&] { shown = true; }, linear(1));
  stage.play(0.5);
  const QImage image = picture(stage.scene);
  EXPECT_GT(alphaAt(image, 200, 150), 250);
  EXPECT_NEAR(alphaAt(image, 200, 169) + alphaAt(image, 200, 170), 255, 24);
  EXPECT_EQ(alphaAt(image, 200, 150 + 20 + 14), 0);
}

TEST(Painting, shadowsFallAroundTheOutline) {
  for (const bool wide : {false, true}) {
    const double width = wide ? 300 : 60;
    Stage stage([&] {
      return Rectangle()
          .fill(black())
          .frame({.width = width, .height = 60})
          .clipShape(RoundedRectangle(10))
          .shadow(black(0.5), 8, {0, 4});
    });
    const QImage image = picture(stage.scene);
    const int left = int(200 - width / 2);
    EXPECT_EQ(alphaAt(image, 200, 150), 255);
    // On the middle of a straight edge a Gaussian has half its strength, less what the offset moves.
    EXPECT_NEAR(alphaAt(image, left - 1, 154), 0.5 * 0.5 * 255, 14) << wide;
    EXPECT_NEAR(alphaAt(image, 200, 184), 0.5 * 0.5 * 255, 14) << wide;
    EXPECT_GT(alphaAt(image, 200, 190), alphaAt(image, 200, 110)) << "it falls downwards";
    EXPECT_EQ(alphaAt(image, 200, 215), 0);
    EXPECT_NEAR(alphaAt(image, left - 5, 150), alphaAt(image, int(199 + width / 2) + 5, 150), 2)
        << "even on both sides";
  }
}

TEST(Painting, blurSpreadsAndKeepsTheAmountOfInk) {
  const auto ink = [](const QImage& image) {
    double sum = 0;
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) sum += alphaAt(image, x, y);
    }
    return sum;
  };
  for (const double radius : {0.6, 2.0, 7.0, 15.0}) {
    Stage stage([&] { return Rectangle().fill(white()).frame({.width = 120, .height = 120}).blur(radius); });
    const QImage image = picture(stage.scene);
    EXPECT_NEAR(ink(image) / (120.0 * 120 * 255), 1, 0.04) << radius;
    EXPECT_NEAR((alphaAt(image, 139, 150) + alphaAt(image, 140, 150)) / 2, 128, 8) << radius;
  }
}

TEST(Painting, groupsThatOnlyMoveAreNotDrawnAgain) {
  int drawn = 0;
  double blur = 8;
  Stage stage([&] {
    return CanvasView(1,
        [&](Canvas& canvas, Size size) {
          ++drawn;
          canvas.fill(Rect{0, 0, size.width, size.height}, white());
        })
        .frame({.width = 40, .height = 40})
        .blur(blur)
        .offset({blur, 0});
  });
  picture(stage.scene);
  drawn = 0;
  stage.change([&] { blur = 3; }, linear(1));
  for (int i = 0; i < 20; ++i) {
    stage.play(1.0 / 60);
    picture(stage.scene);
  }
  EXPECT_LE(drawn, 1);
}

TEST(Painting, fadesAGroupAsOne) {
  const View stack = ZStack(UnitPoint::center, {Rectangle().fill(black()), Rectangle().fill(white())});
  const View canvas = CanvasView(1, [](Canvas& drawing, Size size) {
    for (const Color color : {black(), white()}) drawing.fill(Rect{0, 0, size.width, size.height}, color);
  });
  for (const View& view : {stack, canvas}) {
    Stage stage(view.frame({.width = 40, .height = 40}).opacity(0.5));
    const QRgb pixel = picture(stage.scene).pixel(200, 150);
    EXPECT_NEAR(qAlpha(pixel), 128, 1);
    EXPECT_NEAR(qRed(pixel), qAlpha(pixel), 2) << "the black behind does not shine through";
  }
}

TEST(Painting, aDarkLightFadesFinerThanTheLevelsOfAPixel) {
  Stage stage(ZStack(UnitPoint::center,
      {Rectangle().fill(black()),
          Rectangle().fill(radialGradient({white(0.05), white(0)}, UnitPoint::topLeading, 400))}));
  const QImage image = picture(stage.scene);
  constexpr int side = 8;
  for (int left = 0; left + side <= 400; left += side) {
    double level = 0;
    for (int i = 0; i < side * side; ++i) level += qRed(image.pixel(left + i % side, i / side));
    EXPECT_NEAR(level / (side * side), 0.05 * 255 * (1 - (left + side / 2) / 400.0), 0.1) << left;
  }
}

TEST(Painting, aSpeakerStandsStillWhileItsWavesComeAndGo) {
  const auto drawn = [](const char* name) {
    Stage stage([=] { return Symbol(name).font({60}); });
    return picture(stage.scene);
  };
  // The symbol's square is 80 points wide around (200, 150), the loudspeaker its left half.
  const auto ink = [](const QImage& image, int from, int to) {
    int sum = 0;
    for (int x = from; x < to; ++x) {
      for (int y = 110; y < 190; ++y) sum += qAlpha(image.pixel(x, y)) > 128;
    }
    return sum;
  };
  const QImage silent = drawn("speaker.fill");
  int before = ink(silent, 198, 240);
  EXPECT_EQ(before, 0);
  for (const char* name : {"speaker.wave.1.fill", "speaker.wave.2.fill", "speaker.wave.3.fill"}) {
    const QImage louder = drawn(name);
    EXPECT_EQ(louder.copy(160, 110, 38, 80), silent.copy(160, 110, 38, 80)) << name;
    EXPECT_GT(ink(louder, 198, 240), before + 50) << name;
    before = ink(louder, 198, 240);
  }
  const QImage muted = drawn("speaker.slash.fill");
  EXPECT_NE(muted.copy(160, 110, 38, 80), silent.copy(160, 110, 38, 80)) << "crossed out";
}

TEST(Painting, drawsSymbolsAndTexts) {
  for (const char* name : {"hand.raised.fill", "checkmark.circle.fill", "gearshape.fill"}) {
    EXPECT_TRUE(isSymbol(name)) << name;
  }
  EXPECT_FALSE(isSymbol("no.such.symbol"));
  Stage stage([] { return Text("Claude").font({40, Weight::bold}).foreground({1, 0, 0}); });
  const QImage image = picture(stage.scene);
  int red = 0;
  for (int y = 120; y < 180; ++y) {
    for (int x = 120; x < 280; ++x) red += qRed(image.pixel(x, y)) > 200;
  }
  EXPECT_GT(red, 300);
}

/// What is repainted bit by bit looks as if all had been painted at once.
TEST(Painting, repairsExactlyWhatChanged) {
  for (unsigned seed = 0; seed < 6; ++seed) {
    std::mt19937 random(seed);
    const auto roll = [&](int sides) { return int(random() % unsigned(sides)); };
    struct Item {
      double width = 30;
      int number = 0;
      bool shown = true, blurred = false, shadow = false, faint = false;
    };
    std::vector<Item> items(5);
    double spacing = 4;
    Stage stage([&] {
      Views views;
      for (size_t i = 0; i < items.size(); ++i) {
        const Item& item = items[i];
        if (!item.shown) continue;
        View view =
            RoundedRectangle(6).fill(hsb(double(i) / 5, 0.8, 0.9)).frame({.width = item.width, .height = 24});
        if (item.shadow) view = view.shadow({0.4, 0.7, 1, 0.9}, 5, {0, 3});
        const View label =
            Text("item " + std::to_string(item.number))
                .font({i % 2 ? 34.0 : 13.0})
                .contentTransition(ContentTransition::numericText);
        views.push_back(
            HStack({.spacing = 3}, {view, label})
                .blur(item.blurred ? 4 : 0)
                .opacity(item.faint ? 0.4 : 1)
                .id(std::to_string(i))
                .transition({.insertion = {.opacity = 0, .blur = 5, .scaleX = 0.6, .scaleY = 0.6},
                    .removal = {.opacity = 0, .offset = {20, 0}}}));
      }
      return VStack({.spacing = spacing}, {views})
          .padding(10)
          .background(Rectangle().fill(black()))
          .clipShape(RoundedRectangle(14))
          .shadow(black(0.4), 10, {0, 4});
    });
    QImage shown = picture(stage.scene);
    stage.scene.takeDamage();
    for (int step = 0; step < 120; ++step) {
      if (step % 9 == 0) {
        Item& item = items[size_t(roll(5))];
        const auto animation = roll(4) ? std::optional(notchOpen) : std::nullopt;
        bool* const flags[] = {&item.shown, &item.blurred, &item.faint, &item.shadow};
        const int what = roll(7);
        stage.change(
            [&] {
              if (what < 4) *flags[what] = !*flags[what];
              if (what == 4) item.width = 20 + roll(100);
              if (what == 5) item.number = roll(1000);
              if (what == 6) spacing = roll(12);
            },
            animation);
      } else {
        stage.play(1.0 / 60);
      }
      for (const Rect& area : stage.scene.takeDamage()) paint(stage.scene, shown, area);
      const QImage whole = picture(stage.scene);
      const qsizetype bytes = whole.bytesPerLine();
      for (int y = 0; y < whole.height(); ++y) {
        const uchar *line = whole.constScanLine(y), *other = shown.constScanLine(y);
        if (std::equal(line, line + bytes, other)) continue;
        for (qsizetype i = 0; i < bytes; ++i) {
          ASSERT_LE(std::abs(line[i] - other[i]), 24)
              << "seed " << seed << " step " << step << " at " << i / 4 << "," << y;
        }
      }
    }
  }
}

}  // namespace
}  // namespace tarnwick::ui
