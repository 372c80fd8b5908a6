#include <gmock/gmock.h>

#include "support/ForcedLanguage.h"
#include "ui/Menu.h"
#include "views/NotchStage.h"

namespace tarnwick {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using Found = ui::Inspector::Found;

struct Tray : NotchStage {
  explicit Tray(std::vector<FilePath> files = {}) {
    for (const FilePath& file : files) desktop.fileIcons.versions[file] = 1;
    model.tray.add(files);
    model.expand(Tab::tray);
    settle();
  }

  /// The drop area's fill and its border.
  Found shape(size_t index) const {
    const auto page = *inspect.first([](const Found& f) { return f.id() == "tray" && f.kind() == "Frame"; });
    std::vector<Found> shapes;
    for (const Found& found : inspect.kind("Shape")) {
      if (found.targetFrame().width > 0.9 * page.targetFrame().width &&
          found.targetFrame().y > page.targetFrame().y - 1)
        shapes.push_back(found);
    }
    return shapes.at(index);
  }
  void drag(bool near, bool over) {
    model.setDraggingFiles(near);
    model.isDropTargeted = over;
    settle();
  }
  std::vector<std::string> menuOf(const Found& item) {
    inspect.press(item, ui::PointerButton::secondary);
    inspect.release({470, 90}, ui::PointerButton::secondary);
    settle();
    std::vector<std::string> titles;
    for (const Found& found : inspect.all(
             [](const Found& f) { return f.interaction() && f.interaction()->role == ui::Role::menuItem; }))
      titles.push_back(found.interaction()->accessibilityName);
    return titles;
  }
};

TEST(TrayView, InvitesFiles) {
  struct {
    bool near, over;
    const char *english, *french;
    double opacity, fill, border, scale;
  } const cases[] = {{false, false, "Drop files here", "Dépose des fichiers ici", 0.45, 0.02, 0.14, 1},
      {true, false, "Drop files here", "Dépose des fichiers ici", 0.8, 0.02, 0.56, 1},
      {true, true, "Drop to add", "Lâche pour ajouter", 0.8, 0.08, 0.56, 1.015},
      {false, true, "Drop to add", "Lâche pour ajouter", 0.8, 0.08, 0.56, 1.015}};
  for (const bool french : {false, true}) {
    const ForcedLanguage language(french ? "fr" : "en");
    for (const auto& c : cases) {
      SCOPED_TRACE(testing::Message() << c.near << c.over << french);
      Tray stage;
      stage.drag(c.near, c.over);
      const auto text = stage.inspect.text(french ? c.french : c.english);
      ASSERT_TRUE(text);
      EXPECT_NEAR(text->color().alpha, c.opacity, 1e-3);
      EXPECT_NEAR(text->frame().midX(), 470, 1);
      EXPECT_NEAR(stage.shape(0).color().alpha, c.fill, 1e-3);
      EXPECT_NEAR(stage.shape(1).opacity(), c.border, 1e-3);
      EXPECT_NEAR(stage.shape(1).scale(), c.scale, 1e-3);
      EXPECT_EQ(stage.scene.frame(), c.near || c.over) << "the border marches, and only then";
    }
  }
}

TEST(TrayView, MarchesUntilTheDragHasGone) {
  Tray stage({"/a"});
  stage.model.collapse();
  stage.settle();
  stage.drag(true, true);
  EXPECT_TRUE(stage.inspect.text("a")) << "the drag opens it";
  EXPECT_TRUE(stage.scene.frame());
  stage.model.expand(Tab::tray);
  stage.drag(false, false);
  EXPECT_FALSE(stage.scene.frame());
  EXPECT_NEAR(stage.shape(1).opacity(), 0.14, 1e-3);
}

TEST(TrayView, ShowsTheFilesAndTakesThemOff) {
  const std::string longName(80, 'n');
  Tray stage({"/x/first.txt", "/x/" + longName + ".pdf", "/x/line\nbreak\u202e.exe"});
  EXPECT_THAT(stage.inspect.texts(), ElementsAre("first.txt", longName + ".pdf", "line break.exe"));
  EXPECT_EQ(stage.inspect.kind("Image").size(), 3u);
  EXPECT_LE(stage.inspect.text(longName + ".pdf")->frame().width, 70);
  EXPECT_NEAR(
      stage.inspect.kind("Image")[1].frame().midX() - stage.inspect.kind("Image")[0].frame().midX(), 90, 0.1);
  EXPECT_FALSE(stage.inspect.control("Remove"));

  stage.inspect.hover(stage.inspect.kind("Image")[0]);
  stage.settle();
  EXPECT_NEAR(stage.inspect.kind("Image")[0].scale(), 1.05, 1e-3);
  stage.inspect.tap(*stage.inspect.control("Remove"));
  stage.play(0.1);
  const auto leaving = stage.inspect.first([](const Found& f) { return f.content() == "first.txt"; });
  ASSERT_TRUE(leaving && leaving->isLeaving());
  EXPECT_LT(leaving->opacity(), 1);
  EXPECT_LT(leaving->scale(), 1.05);
  stage.settle();
  EXPECT_EQ(stage.model.tray.items->size(), 2u);
  stage.inspect.tap(*stage.inspect.control("Clear"));
  stage.settle();
  EXPECT_THAT(*stage.model.tray.items, IsEmpty());
  EXPECT_TRUE(stage.inspect.text("Drop files here"));
}

TEST(TrayView, OpensByDoubleClickMenuAndKeys) {
  for (const bool french : {false, true}) {
    const ForcedLanguage language(french ? "fr" : "en");
    Tray stage({"/x/a", "/x/b"});
    stage.inspect.tap(*stage.inspect.text("a"));
    EXPECT_THAT(stage.desktop.fileManager.opened, IsEmpty()) << "a single click";
    stage.inspect.tap(*stage.inspect.text("a"));
    EXPECT_THAT(stage.desktop.fileManager.opened, ElementsAre("/x/a"));

    EXPECT_THAT(stage.menuOf(*stage.inspect.text("b")),
        ElementsAre(french ? "Ouvrir" : "Open",
            french ? "Afficher dans le gestionnaire de fichiers" : "Show in File Manager",
            french ? "Retirer" : "Remove"));
    stage.inspect.tap(*stage.inspect.control(
        french ? "Afficher dans le gestionnaire de fichiers" : "Show in File Manager"));
    EXPECT_THAT(stage.desktop.fileManager.revealed, ElementsAre("/x/b"));

    stage.settle();
    EXPECT_TRUE(stage.inspect.key(ui::Key::left));
    EXPECT_TRUE(stage.inspect.key(ui::Key::enter));
    EXPECT_THAT(stage.desktop.fileManager.opened, ElementsAre("/x/a", "/x/a"));
    EXPECT_TRUE(stage.inspect.key(ui::Key::erase));
    EXPECT_THAT(*stage.model.tray.items, ElementsAre("/x/b"));
  }
}

TEST(TrayView, SeesWhatIsGone) {
  Tray stage({"/x/a", "/x/b"});
  stage.model.trayFiles.setOnShow(true);
  stage.desktop.fileIcons.versions.erase("/x/b");
  stage.settle();
  stage.settle();
  EXPECT_LT(stage.inspect.text("b")->opacity(), 0.5);
  EXPECT_EQ(stage.inspect.text("a")->opacity(), 1);
  EXPECT_EQ(stage.inspect.kind("Image").size(), 2u) << "as it was";
  EXPECT_THAT(stage.menuOf(*stage.inspect.text("b")), ElementsAre("File not found", "Remove"));
  for (const auto& [name, files] : {std::pair("a", std::vector<FilePath>{"/x/a"}), {"b", {}}}) {
    auto item = *stage.inspect.text(name);
    while (!item.interaction() || !item.interaction()->files) item = item.parent();
    EXPECT_EQ(item.interaction()->files(), files) << "what a drag takes out";
  }
}

TEST(TrayView, SendsToTheDevicesThatThereAre) {
  Tray stage({"/x/a", "/x/b"});
  const auto press = [&] {
    stage.inspect.tap(*stage.inspect.control("Send to a Device"));
    stage.settle();
  };
  press();
  EXPECT_FALSE(stage.scene.floating()) << "nobody is there";
  stage.desktop.sharing.devices = {{"7", "Phone"}, {"8", "Tablet"}};
  press();
  stage.inspect.tap(*stage.inspect.control("Tablet"));
  EXPECT_THAT(stage.desktop.sharing.sent, ElementsAre(testing::Pair("8", ElementsAre("/x/a", "/x/b"))));
}

TEST(TrayView, BuildsOnlyWhatCanBeSeenOfAHundredFiles) {
  std::vector<FilePath> files;
  for (int i = 0; i < 100; ++i) files.push_back("/x/" + std::to_string(i));
  Tray stage(files);
  EXPECT_LT(stage.inspect.kind("Image").size(), 12u);
  EXPECT_TRUE(stage.inspect.scroll(*stage.inspect.text("0"), {-90.0 * 50, 0}));
  stage.settle();
  EXPECT_TRUE(stage.inspect.text("50"));
  EXPECT_FALSE(stage.inspect.text("0"));
  EXPECT_LT(stage.desktop.fileIcons.asked.size(), 30u);
}

}  // namespace
}  // namespace tarnwick
