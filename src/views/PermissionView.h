#pragma once
#include <string>

#include "claude/PermissionService.h"
#include "ui/View.h"

namespace tarnwick {

/// What a request takes of the list, below the row of its session, in points.
inline constexpr double permissionHeight = 80;

/// A request that can be answered: what would be done, to the letter, and the buttons to allow and to deny
/// it.
/// @param place another one for each place in the list: where the buttons move, they settle anew
ui::View permissionView(
    PermissionService& permissions, const Session::Request& request, const std::string& place);

}  // namespace tarnwick
