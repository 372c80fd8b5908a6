#pragma once
#include <string>
#include <string_view>

#include "linux/x11/X11Connection.h"

namespace tarnwick {

/// A text among the settings that a settings manager tells all X programs of, as the XSETTINGS protocol lays
/// them out; empty: there is none of that name, or the bytes are none of these settings.
std::string textOfXSettings(std::string_view settings, std::string_view name);

/// The same of the settings manager of the display; empty where there is none. Asks the server.
std::string xSetting(const X11Connection& connection, std::string_view name);

}  // namespace tarnwick
