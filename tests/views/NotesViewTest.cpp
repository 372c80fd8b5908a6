#include <gtest/gtest.h>

#include "support/ForcedLanguage.h"
#include "views/NotchStage.h"

namespace tarnwick {
namespace {

TEST(NotesView, InvitesUntilSomethingIsWritten) {
  for (const auto& [code, text] : {std::pair{"en", "Quick note…"}, {"fr", "Note rapide…"}}) {
    const ForcedLanguage language(code);
    NotchStage stage;
    stage.model.expand(Tab::notes);
    stage.settle();
    const auto placeholder = stage.inspect.text(text);
    ASSERT_TRUE(placeholder);
    EXPECT_NEAR(placeholder->color().alpha, 0.3, 1e-6);
    const auto editor = stage.inspect.kind("TextEditor").at(0);
    EXPECT_EQ(placeholder->frame().x, editor.frame().x) << "where the first letter will be";
    EXPECT_EQ(placeholder->frame().y, editor.frame().y);

    stage.model.notes.setText("a");
    stage.settle();
    EXPECT_FALSE(stage.inspect.text(text));
    stage.model.notes.setText("");
    stage.settle();
    EXPECT_TRUE(stage.inspect.text(text));
  }
}

TEST(NotesView, LightsUpWithTheFocus) {
  NotchStage stage;
  stage.model.expand(Tab::notes);
  stage.settle();
  const auto field = [&](size_t index) {
    const auto editor = stage.inspect.kind("TextEditor").at(0).frame();
    std::vector<ui::Inspector::Found> shapes;
    for (const auto& found : stage.inspect.kind("Shape")) {
      if (found.frame().x == editor.x - 15 && found.frame().y == editor.y - 10) shapes.push_back(found);
    }
    return shapes.at(index).color().alpha;
  };
  EXPECT_NEAR(field(0), 0.05, 1e-6);
  EXPECT_NEAR(field(1), 0, 1e-6);
  // At the placeholder, which is not in the way.
  stage.inspect.tap(*stage.inspect.text("Quick note…"));
  stage.settle();
  EXPECT_NEAR(field(0), 0.08, 1e-6);
  EXPECT_NEAR(field(1), 0.18, 1e-6);
}

}  // namespace
}  // namespace tarnwick
