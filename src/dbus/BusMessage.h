#pragma once
#include <cstdint>
#include <initializer_list>
#include <map>
#include <string>
#include <string_view>

/// The bytes of the few messages that we send over D-Bus ourselves. What the bus would refuse in a string
/// (invalid UTF-8, U+0000) is replaced by U+FFFD.
namespace tarnwick::BusMessage {

/// Of the bus itself, and of the methods that it has.
inline constexpr std::string_view busName = "org.freedesktop.DBus", busPath = "/org/freedesktop/DBus",
                                  peerInterface = "org.freedesktop.DBus.Peer";

/// What opens a connection: the bus takes the user from the socket's credentials.
inline constexpr std::string_view authentication{"\0AUTH EXTERNAL\r\nDATA\r\nBEGIN\r\n", 29};

/// A call without arguments of one of the bus's own methods.
std::string busCall(uint32_t serial, std::string_view interface, std::string_view member);

/// A call of a method of some program on the bus. Where the program does not run, it is not started.
std::string call(uint32_t serial, std::string_view destination, std::string_view path,
    std::string_view interface, std::string_view member,
    std::initializer_list<std::string_view> arguments = {});

/// The same with one argument, a map from string to string.
std::string call(uint32_t serial, std::string_view destination, std::string_view path,
    std::string_view interface, std::string_view member, const std::map<std::string, std::string>& argument);

/// A broadcast signal whose one argument is a map from string to string.
std::string signal(uint32_t serial, std::string_view path, std::string_view interface,
    std::string_view member, const std::map<std::string, std::string>& argument);

}  // namespace tarnwick::BusMessage
