#include "services/TrayStore.h"

#include <filesystem>
#include <string_view>
#include <unordered_set>

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

TrayStore::TrayStore(UserDefaults& defaults) : defaults_(defaults) {
  std::vector<FilePath> stored = defaults_.strings(key).value_or(std::vector<FilePath>{});
  std::erase_if(stored, [](const FilePath& file) { return !exists(file); });
  items.mutate([&](auto& all) { return append(all, stored); });
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

void TrayStore::save() { defaults_.set(key, items.get()); }

}  // namespace tarnwick
