#include "linux/files/AutostartEntry.h"

#include <QStandardPaths>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <sstream>

#include "base/AtomicFile.h"
#include "linux/files/DesktopEntry.h"

namespace tarnwick {
namespace {

constexpr const char* fileName = "/dev.tarnwick.Tarnwick.desktop";
constexpr const char* hiddenEntry = "[Desktop Entry]\nType=Application\nName=Tarnwick\nHidden=true\n";

/// As the value of the key Exec: quoted as an argument, then escaped as a string (Desktop Entry
/// Specification).
std::string quoted(const std::string& program) {
  std::string value = "\"";
  for (const char character : program) {
    switch (character) {
      case '\\':
        value += "\\\\\\\\";
        break;
      case '"':
      case '`':
      case '$':
        value += "\\\\";
        value += character;
        break;
      case '%':
        value += "%%";
        break;
      case '\n':
        value += "\\n";
        break;
      default:
        value += character;
    }
  }
  return value + '"';
}

/// What the administrator or a package wants to be started.
std::optional<DesktopEntry> systemEntry() {
  const char* variable = std::getenv("XDG_CONFIG_DIRS");
  std::stringstream list(variable && *variable ? variable : "/etc/xdg");
  for (std::string folder; std::getline(list, folder, ':');) {
    if (auto entry = DesktopEntry::read(folder + "/autostart" + fileName)) return entry;
  }
  return std::nullopt;
}

bool isSameFile(const std::string& command, const std::string& program) {
  const QString found = QStandardPaths::findExecutable(QString::fromStdString(command));
  std::error_code error;
  return !found.isEmpty() && std::filesystem::equivalent(found.toStdString(), program, error);
}

}  // namespace

AutostartEntry::AutostartEntry(const Folders& folders, std::string program)
    : folder_(folders.configuration() + "/autostart"), program_(std::move(program)) {}

std::string AutostartEntry::contents() const {
  return "[Desktop Entry]\nType=Application\nName=Tarnwick\nExec=" + quoted(program_) +
         "\nStartupNotify=false\n";
}

bool AutostartEntry::isEnabled() const {
  auto entry = DesktopEntry::read(folder_ + fileName);
  if (!entry) entry = systemEntry();
  if (!entry || !entry->isEnabled) return false;
  const auto command = entry->command();
  return entry->exec == quoted(program_) || (!command.empty() && isSameFile(command.front(), program_));
}

void AutostartEntry::setEnabled(bool enabled) {
  std::error_code error;
  const std::string file = folder_ + fileName;
  if (!enabled && !systemEntry()) {
    std::filesystem::remove(file, error);
    return;
  }
  std::filesystem::create_directories(folder_, error);
  (void)writeFileAtomically(file, enabled ? contents() : hiddenEntry);
}

}  // namespace tarnwick
