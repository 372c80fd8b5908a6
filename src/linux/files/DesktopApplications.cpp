#include "linux/files/DesktopApplications.h"

#include <QProcess>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace tarnwick {
namespace {

using std::filesystem::path;

std::string contents(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

/// "\x2d" is how the service manager writes a dash in the name of a unit.
std::string unescaped(std::string name) {
  for (size_t at = 0; (at = name.find("\\x", at)) != std::string::npos && at + 4 <= name.size(); ++at) {
    name.replace(at, 4, 1, static_cast<char>(std::strtol(name.substr(at + 2, 2).c_str(), nullptr, 16)));
  }
  return name;
}

/// The desktop starts each application in a unit "app-LAUNCHER-ID-NUMBER.scope", some without launcher or
/// number, or as "app-ID@NUMBER.service".
std::optional<DesktopEntry> entryOfUnit(int32_t process) {
  std::string line = contents("/proc/" + std::to_string(process) + "/cgroup");
  if (!line.empty() && line.back() == '\n') line.pop_back();
  std::string unit = path(line).filename();
  if (!unit.starts_with("app-")) return std::nullopt;
  unit = path(unit.substr(4)).stem();
  unit = unit.substr(0, unit.find('@'));
  if (const size_t dash = unit.rfind('-');
      dash != std::string::npos && unit.find_first_not_of("0123456789", dash + 1) == std::string::npos) {
    unit.resize(dash);
  }
  if (auto entry = DesktopEntry::named(unescaped(unit))) return entry;
  const size_t dash = unit.find('-');
  return dash == std::string::npos ? std::nullopt : DesktopEntry::named(unescaped(unit.substr(dash + 1)));
}

std::optional<DesktopEntry> entryOfProgram(int32_t process) {
  const std::string folder = "/proc/" + std::to_string(process);
  std::error_code error;
  const path program = std::filesystem::read_symlink(folder + "/exe", error);
  const std::string commandLine = contents(folder + "/cmdline");
  // A script is known by its own name rather than by its interpreter's.
  const std::string first = commandLine.c_str();
  const std::string second = first.size() < commandLine.size() ? commandLine.c_str() + first.size() + 1 : "";
  for (const path& candidate : {path(second), path(first), program}) {
    const std::string name = candidate.filename();
    if (name.empty() || name.starts_with('-')) continue;
    if (auto entry = DesktopEntry::starting(name)) return entry;
  }
  return std::nullopt;
}

std::string iconFile(const std::string& icon) {
  if (icon.empty() || icon.starts_with('/')) return icon;
  std::error_code error;
  for (const std::string& folder : dataFolders()) {
    for (const char* size :
        {"128x128", "256x256", "96x96", "64x64", "512x512", "48x48", "scalable", "32x32"}) {
      for (const char* ending : {".png", ".svg"}) {
        const std::string file = folder + "/icons/hicolor/" + size + "/apps/" + icon + ending;
        if (std::filesystem::exists(file, error)) return file;
      }
    }
    for (const char* ending : {".png", ".svg", ""}) {
      const std::string file = folder + "/pixmaps/" + icon + ending;
      if (std::filesystem::exists(file, error)) return file;
    }
  }
  return "";
}

}  // namespace

std::optional<Application> DesktopApplications::runningApplication(int32_t process, const std::string& name) {
  std::error_code error;
  if (!std::filesystem::exists("/proc/" + std::to_string(process), error)) return std::nullopt;
  auto entry = DesktopEntry::named(name);
  if (!entry) entry = entryOfUnit(process);
  if (!entry) entry = entryOfProgram(process);
  if (!entry) return Application{};
  return Application{entry->path, images_.decodeFile(iconFile(entry->icon))};
}

bool DesktopApplications::bringForward(const FilePath& bundle) {
  const auto entry = DesktopEntry::read(bundle);
  return entry && activation_.bringForward({entry->windowClass, entry->id});
}

void DesktopApplications::start(const FilePath& bundle) {
  const auto entry = DesktopEntry::read(bundle);
  if (!entry) return;
  QStringList words;
  for (const std::string& word : entry->command()) words << QString::fromStdString(word);
  if (words.isEmpty()) return;
  const QString program = words.takeFirst();
  QProcess::startDetached(program, words);
}

}  // namespace tarnwick
