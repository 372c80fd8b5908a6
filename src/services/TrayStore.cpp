#include "services/TrayStore.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <memory>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace tarnwick {
namespace {

constexpr const char* key = "trayItems";

bool exists(const FilePath& file) {
  std::error_code unreachable;
  return std::filesystem::exists(file, unreachable);
}

/// Appends the files that are not in `items` yet. @return whether there was one
bool append(std::vector<FilePath>& items, const std::vector<FilePath>& files) {
  // The views stay valid because the strings do not move: there is room for all of them beforehand.
  items.reserve(items.size() + files.size());
  std::unordered_set<std::string_view> known(items.begin(), items.end());
  const size_t before = items.size();
  for (const FilePath& file : files) {
    if (known.insert(file).second) items.push_back(file);
  }
  return items.size() > before;
}

}  // namespace

TrayStore::TrayStore(Scheduler& scheduler, UserDefaults& defaults) : defaults_(defaults) {
  items.mutate(
      [&](auto& all) { return append(all, defaults_.strings(key).value_or(std::vector<FilePath>{})); });
  if (items->empty()) return;
  const auto gone = std::make_shared<std::unordered_set<FilePath>>();
  looking_ = scheduler.background(
      [gone, files = items.get()] {
        std::ranges::copy_if(
            files, std::inserter(*gone, gone->end()), [](const FilePath& file) { return !exists(file); });
      },
      [this, gone] {
        const auto leaveOut = [&](auto& all) {
          return std::erase_if(all, [&](const FilePath& file) { return gone->contains(file); }) > 0;
        };
        saved_ ? (void)leaveOut(*saved_) : items.mutate(leaveOut);
      });
}

void TrayStore::add(const std::vector<FilePath>& files) {
  items.mutate([&](auto& all) { return append(all, files); });
  save();
}

void TrayStore::remove(const FilePath& file) {
  items.mutate([&](auto& all) { return std::erase(all, file) > 0; });
  save();
}

void TrayStore::clear() {
  items = {};
  save();
}

void TrayStore::showcaseBegin() {
  if (!saved_) saved_ = items.get();
  items = {};
}

void TrayStore::showcaseEnd() {
  if (saved_) items = *std::exchange(saved_, std::nullopt);
}

void TrayStore::save() {
  if (!saved_) defaults_.set(key, items.get());
}

}  // namespace tarnwick
