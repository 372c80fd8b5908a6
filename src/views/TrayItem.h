#pragma once
#include "services/TrayFiles.h"
#include "services/TrayStore.h"
#include "ui/View.h"

namespace tarnwick {

/// What an item takes of the shelf's width, in points.
inline constexpr double trayItemWidth = 82;

/// A file on the shelf. It can be dragged out, opened, shown in its folder and taken off.
ui::View trayItem(const FilePath& file, TrayStore& tray, TrayFiles& files);

}  // namespace tarnwick
