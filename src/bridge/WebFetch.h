#pragma once
#include <atomic>
#include <cstddef>
#include <string>

namespace tarnwick {

/// What the web answers to a GET of that http(s) address; empty when it is an error, more than `limit` bytes,
/// takes longer than ten seconds, was cancelled, or this machine has no library for it.
std::string fetchFromWeb(const std::string& url, size_t limit, const std::atomic<bool>& cancelled);

}  // namespace tarnwick
