#pragma once
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/NotificationCenter.h"

/// The bytes of the few messages that the relay sends over D-Bus.
namespace tarnwick::BusMessage {

/// What opens a connection: the bus takes the user from the socket's credentials.
inline constexpr std::string_view authentication{"\0AUTH EXTERNAL\r\nDATA\r\nBEGIN\r\n", 29};

/// A call without arguments of one of the bus's own methods.
std::string busCall(uint32_t serial, std::string_view interface, std::string_view member);

/// A broadcast signal whose one argument is a map from string to string. What the bus would refuse in a
/// string (invalid UTF-8, U+0000) is replaced by U+FFFD.
std::string signal(uint32_t serial, std::string_view path, std::string_view interface,
                   std::string_view member, const StringMap& argument);

}  // namespace tarnwick::BusMessage
