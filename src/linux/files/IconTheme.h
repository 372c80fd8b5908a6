#pragma once
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tarnwick {

/// The icons of a theme and of those that it inherits, as the freedesktop icon theme specification lays them
/// out.
class IconTheme {
 public:
  /// Reads what the themes say of themselves, the files are looked for later.
  /// @param folders where themes are, each in a folder of its name; the first ones come first
  IconTheme(const std::string& name, std::vector<std::string> folders);

  /// The file of the icon that fits `pixels` best, under the first of the names for which a theme has one;
  /// none where no theme has.
  std::optional<std::string> find(const std::vector<std::string>& names, int pixels) const;

 private:
  /// A folder within the theme, for icons of one size.
  struct Folder {
    std::string name;
    int least = 0, most = 0;
  };
  struct Theme {
    std::string name;
    std::vector<Folder> folders;
  };

  void add(const std::string& name);
  std::optional<std::string> find(const Theme& theme, const std::string& icon, int pixels) const;
  std::optional<std::string> existing(const std::string& pathWithoutEnding) const;

  const std::vector<std::string> folders_;
  std::vector<Theme> themes_;
};

/// The folders that themes are in.
std::vector<std::string> iconFolders();

/// The theme that is set where no portal tells of it: in the files of KDE and of GTK; else the one that
/// everyone has.
std::string iconThemeOfFiles();

}  // namespace tarnwick
