#include "linux/files/DesktopFileIcons.h"

#include <sys/stat.h>

#include <QMimeDatabase>
#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <functional>

#include "linux/files/Thumbnail.h"
#include "linux/files/XdgFolders.h"

namespace tarnwick {
namespace {

constexpr int wantedPixels = 92;

std::vector<std::string> iconNames(const FilePath& file, bool isFolder) {
  if (isFolder) return {"folder", "inode-directory"};
  const QMimeDatabase database;
  const QMimeType type = database.mimeTypeForFile(QString::fromStdString(file));
  std::vector<std::string> names{type.iconName().toStdString()};
  // What a kind is a special case of has an icon of its own more often.
  for (const QString& ancestor : type.allAncestors()) {
    names.push_back(database.mimeTypeForName(ancestor).iconName().toStdString());
    if (ancestor == "text/plain" || ancestor == "application/octet-stream") break;
  }
  names.insert(std::min(names.begin() + 1, names.end()), type.genericIconName().toStdString());
  names.insert(names.end(), {"text-x-generic", "unknown"});
  return names;
}

}  // namespace

/// What the display tells comes first, as for the file manager: a portal tells the defaults of a desktop that
/// is not the one that runs.
std::string DesktopFileIcons::themeThatIsSet() const {
  const std::string ofDisplay = themeOfDisplay_ ? themeOfDisplay_() : "";
  if (!ofDisplay.empty()) return ofDisplay;
  const std::string told = appearance_.iconTheme;
  return told.empty() ? iconThemeOfFiles() : told;
}

void DesktopFileIcons::refresh() {
  const std::string name = themeThatIsSet();
  const std::lock_guard lock(mutex_);
  if (name == themeName_) return;
  themeName_ = name;
  theme_.reset();
  loaded_.clear();
}

std::optional<uint64_t> DesktopFileIcons::version(const FilePath& file) {
  struct stat status;
  if (::stat(file.c_str(), &status) != 0) {
    // What may not be looked at, or does not answer, is there all the same.
    if (errno == ENOENT || errno == ENOTDIR) return std::nullopt;
    status = {};
  }
  std::string theme;
  {
    const std::lock_guard lock(mutex_);
    theme = themeName_;
  }
  std::string all = theme;
  const auto add = [&](long long number) { all += '\n' + std::to_string(number); };
  add(status.st_mtim.tv_sec);
  add(static_cast<long long>(status.st_ino));
  for (const std::string& thumbnail : thumbnailsOf(file)) {
    if (::stat(thumbnail.c_str(), &status) == 0) add(status.st_mtim.tv_sec);
  }
  return std::hash<std::string>()(all);
}

std::optional<Image> DesktopFileIcons::icon(const FilePath& file) {
  struct stat status;
  if (::stat(file.c_str(), &status) == 0) {
    for (const std::string& thumbnail : thumbnailsOf(file)) {
      if (!isThumbnailOf(thumbnail, status.st_mtim.tv_sec)) continue;
      if (auto picture = images_.decodeFile(thumbnail)) return picture;
    }
  }
  return iconOfKind(file);
}

std::optional<Image> DesktopFileIcons::iconOfKind(const FilePath& file) {
  std::error_code error;
  const auto names = iconNames(file, std::filesystem::is_directory(file, error));
  std::shared_ptr<const IconTheme> theme;
  {
    const std::lock_guard lock(mutex_);
    if (!theme_) theme_ = std::make_shared<IconTheme>(themeName_, iconFolders());
    theme = theme_;
  }
  const auto path = theme->find(names, wantedPixels);
  if (!path) return std::nullopt;
  {
    const std::lock_guard lock(mutex_);
    if (const auto found = loaded_.find(*path); found != loaded_.end()) return found->second;
  }
  auto picture = images_.decodeFile(*path);
  const std::lock_guard lock(mutex_);
  return loaded_.emplace(*path, std::move(picture)).first->second;
}

}  // namespace tarnwick
