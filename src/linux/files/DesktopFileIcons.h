#pragma once
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "linux/files/IconTheme.h"
#include "linux/files/QtImageDecoder.h"
#include "platform/DesktopAppearance.h"
#include "platform/FileIcons.h"

namespace tarnwick {

/// Icons as the desktop's file manager shows them: the thumbnail that it has made of a file, else the icon of
/// the file's kind from the icon theme.
class DesktopFileIcons : public FileIcons {
 public:
  /// `themeOfDisplay` says which icon theme programs on this display are told, or nothing. It is asked on the
  /// main thread, and only when there are icons to show.
  explicit DesktopFileIcons(
      const DesktopAppearance& appearance, std::function<std::string()> themeOfDisplay = nullptr)
      : appearance_(appearance), themeOfDisplay_(std::move(themeOfDisplay)) {}

  std::optional<uint64_t> version(const FilePath& file) override;
  std::optional<Image> icon(const FilePath& file) override;
  void refresh() override;

 private:
  std::optional<Image> iconOfKind(const FilePath& file);

  std::string themeThatIsSet() const;

  const DesktopAppearance& appearance_;
  const std::function<std::string()> themeOfDisplay_;
  /// Pictures as large as the tray shows them at pixel ratio 2.
  const QtImageDecoder images_{QtImageDecoder::fewPixels, 92};
  /// Of all that follows.
  std::mutex mutex_;
  std::string themeName_;
  std::shared_ptr<const IconTheme> theme_;
  /// By file. Many files share the icon of their kind.
  std::map<std::string, std::optional<Image>> loaded_;
};

}  // namespace tarnwick
