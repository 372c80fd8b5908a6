#pragma once
#include <cstddef>
#include <string>

namespace tarnwick {

/// What the web answers to a GET of that http(s) address; empty when it is an error, more than `limit` bytes,
/// takes longer than ten seconds, or this machine has no library for it. Only public addresses are connected
/// to, wherever names and redirections lead, and without a proxy, which could lead elsewhere. No name or
/// password is sent along: an address that has one is not fetched.
std::string fetchFromWeb(const std::string& address, size_t limit);

}  // namespace tarnwick
