#include "bridge/CommandReader.h"

#include <errno.h>
#include <glib-unix.h>
#include <unistd.h>

#include <cstdlib>

namespace tarnwick {
namespace {

/// No command is nearly as long.
constexpr size_t longestLine = 1000;

}  // namespace

CommandReader::CommandReader(std::function<void(const std::string&)> onCommand)
    : onCommand_(std::move(onCommand)) {
  g_unix_set_fd_nonblocking(STDIN_FILENO, true, nullptr);
  const auto readable = [](gint, GIOCondition, gpointer self) -> gboolean {
    static_cast<CommandReader*>(self)->read();
    return G_SOURCE_CONTINUE;
  };
  g_unix_fd_add(STDIN_FILENO, static_cast<GIOCondition>(G_IO_IN | G_IO_HUP | G_IO_ERR), readable, this);
}

void CommandReader::read() {
  char bytes[4096];
  const ssize_t count = ::read(STDIN_FILENO, bytes, sizeof bytes);
  if (count < 0 && (errno == EAGAIN || errno == EINTR)) return;
  if (count <= 0) ::_exit(EXIT_SUCCESS);
  tail_.append(bytes, static_cast<size_t>(count));
  for (size_t end; (end = tail_.find('\n')) != std::string::npos; tail_.erase(0, end + 1)) {
    if (end <= longestLine) onCommand_(tail_.substr(0, end));
  }
  // What is kept of a line that is too long still makes it too long.
  if (tail_.size() > longestLine + 1) tail_.resize(longestLine + 1);
}

}  // namespace tarnwick
