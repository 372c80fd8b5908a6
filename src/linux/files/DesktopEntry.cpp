#include "linux/files/DesktopEntry.h"

#include <QProcess>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "linux/files/XdgFolders.h"

namespace tarnwick {
namespace {

constexpr size_t longestEntry = 1 << 20;

void take(std::string& value, const std::string& line, const std::string& key) {
  if (value.empty() && line.starts_with(key + '=')) value = line.substr(key.size() + 1);
}

}  // namespace

std::vector<std::string> dataFolders() {
  std::vector<std::string> folders{XdgFolders().data()};
  const char* variable = std::getenv("XDG_DATA_DIRS");
  std::stringstream list(variable && *variable ? variable : "/usr/local/share:/usr/share");
  for (std::string folder; std::getline(list, folder, ':');) {
    if (folder.starts_with('/')) folders.push_back(folder);
  }
  return folders;
}

std::optional<DesktopEntry> DesktopEntry::read(const std::string& path) {
  std::error_code error;
  if (std::filesystem::file_size(path, error) > longestEntry || error) return std::nullopt;
  std::ifstream file(path);
  DesktopEntry entry;
  entry.path = path;
  entry.id = std::filesystem::path(path).stem();
  bool inMainGroup = false;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with('[')) {
      if (inMainGroup) break;
      inMainGroup = line == "[Desktop Entry]";
    } else if (inMainGroup) {
      take(entry.exec, line, "Exec");
      take(entry.icon, line, "Icon");
      take(entry.windowClass, line, "StartupWMClass");
      if (line == "Hidden=true" || line == "X-GNOME-Autostart-enabled=false") entry.isEnabled = false;
    }
  }
  return inMainGroup ? std::optional(entry) : std::nullopt;
}

std::optional<DesktopEntry> DesktopEntry::named(const std::string& id) {
  if (id.empty() || id.find('/') != std::string::npos) return std::nullopt;
  for (const std::string& folder : dataFolders()) {
    if (auto entry = read(folder + "/applications/" + id + ".desktop")) return entry;
  }
  return std::nullopt;
}

std::optional<DesktopEntry> DesktopEntry::starting(const std::string& program) {
  if (auto entry = named(program)) return entry;
  for (const std::string& folder : dataFolders()) {
    std::error_code error;
    std::filesystem::directory_iterator files(folder + "/applications", error);
    for (; !error && files != std::filesystem::directory_iterator(); files.increment(error)) {
      const std::string path = files->path();
      auto entry = path.ends_with(".desktop") ? read(path) : std::nullopt;
      if (!entry) continue;
      const std::vector<std::string> command = entry->command();
      if (!command.empty() && std::filesystem::path(command.front()).filename() == program) return entry;
    }
  }
  return std::nullopt;
}

std::vector<std::string> DesktopEntry::command() const {
  std::vector<std::string> words;
  for (const QString& word : QProcess::splitCommand(QString::fromStdString(exec))) {
    // A placeholder stands alone; there is nothing to put in its place.
    if (word.size() == 2 && word[0] == '%') {
      if (word[1] == '%') words.push_back("%");
    } else {
      words.push_back(word.toStdString());
    }
  }
  return words;
}

}  // namespace tarnwick
