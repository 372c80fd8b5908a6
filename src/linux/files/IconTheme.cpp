#include "linux/files/IconTheme.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "linux/files/DesktopEntry.h"
#include "linux/files/IniFile.h"
#include "linux/files/XdgFolders.h"

namespace tarnwick {
namespace {

/// Themes that inherit each other in a circle end here.
constexpr size_t mostThemes = 16;
constexpr const char* everyonesTheme = "hicolor";

std::vector<std::string> split(const std::string& list) {
  std::vector<std::string> parts;
  std::stringstream stream(list);
  for (std::string part; std::getline(stream, part, ',');) {
    if (!part.empty()) parts.push_back(part);
  }
  return parts;
}

int number(const std::map<std::string, std::string>& values, const char* key, int otherwise) {
  const auto found = values.find(key);
  return found == values.end() ? otherwise : std::atoi(found->second.c_str());
}

/// How far a folder's sizes are from the wanted one. What has to be magnified is worse.
int distance(int least, int most, int pixels) {
  return pixels < least ? least - pixels : pixels > most ? 4 * (pixels - most) : 0;
}

}  // namespace

IconTheme::IconTheme(const std::string& name, std::vector<std::string> folders)
    : folders_(std::move(folders)) {
  add(name);
  add(everyonesTheme);
}

void IconTheme::add(const std::string& name) {
  if (name.empty() || name.find('/') != std::string::npos || themes_.size() >= mostThemes ||
      std::ranges::find(themes_, name, &Theme::name) != themes_.end())
    return;
  IniFile index;
  for (auto folder = folders_.begin(); folder != folders_.end() && index.empty(); ++folder) {
    index = readIniFile(*folder + "/" + name + "/index.theme");
  }
  if (index.empty()) return;
  auto& about = index["Icon Theme"];
  Theme theme{.name = name};
  for (const char* key : {"Directories", "ScaledDirectories"}) {
    for (const std::string& folder : split(about[key])) {
      const auto& values = index[folder];
      const int scale = number(values, "Scale", 1), size = number(values, "Size", 0);
      const auto type = values.find("Type");
      const bool scalable = type != values.end() && type->second == "Scalable";
      theme.folders.push_back({.name = folder,
          .least = scale * (scalable ? number(values, "MinSize", size) : size),
          .most = scale * (scalable ? number(values, "MaxSize", size) : size)});
    }
  }
  themes_.push_back(std::move(theme));
  for (const std::string& parent : split(about["Inherits"])) {
    if (parent != everyonesTheme) add(parent);
  }
}

std::optional<std::string> IconTheme::find(const std::vector<std::string>& names, int pixels) const {
  for (const Theme& theme : themes_) {
    for (const std::string& name : names) {
      if (auto file = find(theme, name, pixels)) return file;
    }
  }
  return std::nullopt;
}

std::optional<std::string> IconTheme::find(const Theme& theme, const std::string& icon, int pixels) const {
  std::vector<Folder> folders = theme.folders;
  std::ranges::stable_sort(folders, {}, [&](const Folder& f) { return distance(f.least, f.most, pixels); });
  for (const Folder& folder : folders) {
    for (const std::string& root : folders_) {
      if (auto file = existing(root + "/" + theme.name + "/" + folder.name + "/" + icon)) return file;
    }
  }
  return std::nullopt;
}

std::optional<std::string> IconTheme::existing(const std::string& pathWithoutEnding) const {
  std::error_code error;
  for (const char* ending : {".svg", ".png"}) {
    if (std::filesystem::exists(pathWithoutEnding + ending, error)) return pathWithoutEnding + ending;
  }
  return std::nullopt;
}

std::vector<std::string> iconFolders() {
  std::vector<std::string> folders{XdgFolders().home() + "/.icons"};
  for (const std::string& folder : dataFolders()) folders.push_back(folder + "/icons");
  return folders;
}

std::string iconThemeOfFiles() {
  const std::string configuration = XdgFolders().configuration();
  const char* desktop = std::getenv("XDG_CURRENT_DESKTOP");
  const bool isKde = desktop && std::string(desktop).find("KDE") != std::string::npos;
  const auto kde = [&] { return readIniFile(configuration + "/kdeglobals")["Icons"]["Theme"]; };
  if (isKde) {
    const std::string theme = kde();
    return theme.empty() ? "breeze" : theme;
  }
  for (const char* version : {"gtk-4.0", "gtk-3.0"}) {
    const std::string theme =
        readIniFile(configuration + "/" + version + "/settings.ini")["Settings"]["gtk-icon-theme-name"];
    if (!theme.empty()) return theme;
  }
  return "Adwaita";
}

}  // namespace tarnwick
