#include "cli/RemotePoster.h"

#include <limits.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>

#include "base/Environment.h"
#include "base/Utf8.h"
#include "cli/RemoteEvent.h"
#include "dbus/LocalSocket.h"

namespace tarnwick {
namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr auto patience = 150ms;
/// Nothing tells when a listener has room for another caller.
constexpr auto pause = 5ms;

/// In a container, root's listener outside may be a user whom we do not know by that number; whoever is root
/// has said itself where to post.
bool maySee(int listener) { return isTrusted(listener) || ::geteuid() == 0; }

}  // namespace

void RemotePoster::post(std::string_view name, const StringMap& userInfo) {
  if (name != eventNotification) return;
  const auto end = Clock::now() + patience;
  Descriptor listener = connectTo({socket_}, SOCK_STREAM);
  while (listener < 0 && errno == EAGAIN && Clock::now() < end) {
    ::poll(nullptr, 0, pause.count());
    listener = connectTo({socket_}, SOCK_STREAM);
  }
  if (listener < 0 || !maySee(listener)) return;
  const std::string line = remoteLine(userInfo, machine_);
  for (std::string_view left = line; !left.empty();) {
    const ssize_t sent = ::send(listener, left.data(), left.size(), MSG_NOSIGNAL);
    if (sent > 0) left.remove_prefix(static_cast<size_t>(sent));
    if (sent < 0 && errno != EAGAIN && errno != EINTR) return;
    const auto rest = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
    pollfd ready{listener, POLLOUT, 0};
    if (!left.empty() && (rest <= 0 || ::poll(&ready, 1, static_cast<int>(rest)) != 1)) return;
  }
}

std::string machineName() {
  const std::string_view told = environment("TARNWICK_MACHINE");
  char host[HOST_NAME_MAX + 1] = "";
  if (told.empty()) ::gethostname(host, sizeof host - 1);
  return withoutInvalidUtf8(told.empty() ? host : told);
}

}  // namespace tarnwick
