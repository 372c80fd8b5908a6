#include "services/TrayFiles.h"

#include <algorithm>
#include <utility>

namespace tarnwick {
namespace {

/// How often files on show are looked at, in seconds.
constexpr double lookInterval = 2;
/// Files of one folder that are looked at together. What is on show first is known soon.
constexpr size_t together = 8;
/// As many folders may hang before no other one is looked at.
constexpr size_t mostFolders = 4;

std::string folderOf(const FilePath& file) { return file.substr(0, file.rfind('/') + 1); }

}  // namespace

/// What a look has found.
struct TrayFiles::Seen {
  FilePath file;
  std::optional<uint64_t> versionBefore, version;
  std::optional<Image> icon;
};

const FileLook& TrayFiles::look(const FilePath& file) {
  std::unique_ptr<Known>& known = known_[file];
  if (!known) {
    known = std::make_unique<Known>();
    next_ = scheduler_.post([this] { lookAtThoseThatWait(); });
  }
  return known->look.get();
}

void TrayFiles::setOnShow(bool onShow) {
  if (onShow == bool(again_)) return;
  again_ = {};
  if (!onShow) return;
  icons_.refresh();
  sharing_.refresh();
  lookAtAll();
  again_ = scheduler_.every(lookInterval, [this] { lookAtAll(); });
}

void TrayFiles::keep(const std::vector<FilePath>& files) {
  std::erase_if(
      known_, [&](const auto& entry) { return std::ranges::find(files, entry.first) == files.end(); });
}

void TrayFiles::open(const FilePath& file) {
  if (!isGone(file)) manager_.open(file);
}

void TrayFiles::reveal(const FilePath& file) {
  if (!isGone(file)) manager_.reveal(file);
}

void TrayFiles::send(const std::vector<FilePath>& files, const std::string& target) {
  std::vector<FilePath> there = files;
  std::erase_if(there, [this](const FilePath& file) { return isGone(file); });
  if (!there.empty()) sharing_.send(there, target);
}

bool TrayFiles::isGone(const FilePath& file) const {
  const auto found = known_.find(file);
  return found != known_.end() && found->second->look->isGone;
}

void TrayFiles::lookAtAll() {
  for (const auto& [file, known] : known_) known->waits = true;
  lookAtThoseThatWait();
}

void TrayFiles::lookAtThoseThatWait() {
  std::map<std::string, std::vector<FilePath>> byFolder;
  for (const auto& [file, known] : known_) {
    if (known->waits) byFolder[folderOf(file)].push_back(file);
  }
  for (auto& [folder, files] : byFolder) {
    if (looking_.size() < mostFolders && !looking_.contains(folder)) lookAt(folder, std::move(files));
  }
}

void TrayFiles::lookAt(const std::string& folder, std::vector<FilePath> files) {
  files.resize(std::min(files.size(), together));
  const auto seen = std::make_shared<std::vector<Seen>>();
  for (const FilePath& file : files) {
    known_[file]->waits = false;
    seen->push_back({.file = file, .versionBefore = known_[file]->version});
  }
  looking_[folder] = scheduler_.background(
      [seen, &icons = icons_] {
        for (Seen& one : *seen) {
          one.version = icons.version(one.file);
          if (one.version && one.version != one.versionBefore) one.icon = icons.icon(one.file);
        }
      },
      [this, seen, folder] {
        for (const Seen& one : *seen) adopt(one);
        looking_.erase(folder);
        lookAtThoseThatWait();
      });
}

void TrayFiles::adopt(const Seen& seen) {
  const auto found = known_.find(seen.file);
  if (found == known_.end()) return;
  Known& known = *found->second;
  FileLook look = known.look;
  look.isGone = !seen.version;
  if (seen.version != seen.versionBefore && seen.version) look.icon = seen.icon;
  known.version = seen.version;
  known.look = std::move(look);
}

}  // namespace tarnwick
