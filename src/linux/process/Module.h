#pragma once
#include <string>

namespace tarnwick {

/// The command that users know, beside this program: its absolute path, links resolved.
std::string commandPath();

/// The folder of the modules that go with the running program. They are adapters whose libraries take long to
/// load or may be missing: they are loaded when they are first needed, and stay.
std::string moduleFolder();

/// The function of that name in a module; null when the module, a library that it needs, or the function is
/// missing, which is a normal case. May take tens of milliseconds; any thread may call it.
void* moduleFunction(const std::string& modulePath, const char* name);

}  // namespace tarnwick
