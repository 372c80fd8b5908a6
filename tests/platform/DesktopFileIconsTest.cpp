#include <gmock/gmock.h>
#include <utime.h>

#include <QCryptographicHash>
#include <QImage>
#include <filesystem>

#include "linux/files/DesktopFileIcons.h"
#include "linux/files/FileList.h"
#include "support/TemporaryFolder.h"

namespace tarnwick {
namespace {

/// Two themes, one of which inherits the other, and files to show. Each icon has a colour of its own.
class DesktopFileIconsTest : public testing::Test {
 protected:
  DesktopFileIconsTest() {
    qputenv("XDG_DATA_HOME", root.path().c_str());
    qputenv("XDG_CACHE_HOME", root.path().c_str());
    root.write("icons/chosen/index.theme",
        "[Icon Theme]\nInherits=parent, nobody\nDirectories=16/kinds,96/kinds\n"
        "[16/kinds]\nSize=16\n[96/kinds]\nSize=48\nScale=2\n");
    root.write("icons/parent/index.theme",
        "[Icon "
        "Theme]\nInherits=chosen\nDirectories=any\n[any]\nSize=64\nType=Scalable\nMinSize=8\nMaxSize=512\n");
    paint("icons/chosen/16/kinds/folder.png", "red");
    paint("icons/chosen/96/kinds/folder.png", "blue");
    paint("icons/chosen/16/kinds/text-x-generic.png", "white");
    paint("icons/parent/any/application-pdf.png", "yellow");
    paint("icons/parent/any/text-x-generic.png", "black");
    appearance.iconTheme = "chosen";
    icons.refresh();
  }
  ~DesktopFileIconsTest() override {
    qunsetenv("XDG_DATA_HOME");
    qunsetenv("XDG_CACHE_HOME");
  }

  void paint(const std::string& file, const char* color, int modified = 0) {
    QImage picture(8, 8, QImage::Format_RGB32);
    picture.fill(QColor(color));
    if (modified > 0) picture.setText("Thumb::MTime", QString::number(modified));
    const std::string path = root.path() + "/" + file;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    ASSERT_TRUE(picture.save(QString::fromStdString(path)));
  }
  std::string colorOf(const FilePath& file) {
    const auto icon = icons.icon(file);
    if (!icon) return "none";
    for (const char* name : {"red", "blue", "white", "yellow", "black", "green"}) {
      if (QColor(name).rgba() == icon->pixels->front()) return name;
    }
    return "?";
  }

  const TemporaryFolder root;
  DesktopAppearance appearance;
  std::string themeOfDisplay;
  DesktopFileIcons icons{appearance, [this] { return themeOfDisplay; }};
};

TEST_F(DesktopFileIconsTest, FindsTheIconOfAKindInTheThemeAndThoseItInherits) {
  EXPECT_EQ(colorOf(root.path()), "blue") << "the size that fits best";
  EXPECT_EQ(colorOf(root.write("a.txt", "text")), "white") << "the theme's own, of any size, comes first";
  EXPECT_EQ(colorOf(root.write("a.py", "text")), "white") << "a script is a text";
  EXPECT_EQ(colorOf(root.write("a.pdf", "%PDF-1.4")), "white");
  std::filesystem::remove(root.path() + "/icons/chosen/16/kinds/text-x-generic.png");
  EXPECT_EQ(colorOf(root.path() + "/a.pdf"), "yellow");
  EXPECT_EQ(colorOf(root.path() + "/a.txt"), "black");
  themeOfDisplay = "parent";
  icons.refresh();
  paint("icons/chosen/16/kinds/text-x-generic.png", "green");
  EXPECT_EQ(colorOf(root.path() + "/a.txt"), "black") << "its own come before those that it inherits";
}

TEST_F(DesktopFileIconsTest, ShowsWhatTheDesktopHasMadeOfAPicture) {
  const FilePath file = root.write("some & ünusual; name.txt", "text");
  const utimbuf times{1'600'000'000, 1'600'000'000};
  ::utime(file.c_str(), &times);
  const auto before = icons.version(file);
  // As other programs name it: `printf %s URI | md5sum` of the escaped address.
  EXPECT_EQ(uriOfFile("/a b/ü;&~%"), "file:///a%20b/%C3%BC%3B&~%25");
  const QByteArray name = QCryptographicHash::hash(uriOfFile(file).c_str(), QCryptographicHash::Md5).toHex();
  const std::string thumbnail = "thumbnails/large/" + name.toStdString() + ".png";
  paint(thumbnail, "red", 1'500'000'000);
  EXPECT_EQ(colorOf(file), "white") << "of an older state";
  paint(thumbnail, "green", 1'600'000'000);
  EXPECT_EQ(colorOf(file), "green");
  EXPECT_NE(icons.version(file), before);
  EXPECT_EQ(icons.version(file), icons.version(file));
  std::filesystem::remove(file);
  EXPECT_EQ(icons.version(file), std::nullopt);
}

}  // namespace
}  // namespace tarnwick
