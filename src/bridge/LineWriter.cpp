#include "bridge/LineWriter.h"

#include <errno.h>
#include <glib-unix.h>
#include <unistd.h>

#include <cstdlib>

namespace tarnwick {

LineWriter::LineWriter(std::function<void()> onIdle) : onIdle_(std::move(onIdle)) {
  g_unix_set_fd_nonblocking(STDOUT_FILENO, true, nullptr);
}

void LineWriter::write(std::string line) {
  line_ = std::move(line);
  written_ = 0;
  if (writeOn()) return;
  const auto writable = [](gint, GIOCondition, gpointer self) -> gboolean {
    auto* writer = static_cast<LineWriter*>(self);
    if (!writer->writeOn()) return G_SOURCE_CONTINUE;
    writer->onIdle_();
    return G_SOURCE_REMOVE;
  };
  g_unix_fd_add(STDOUT_FILENO, G_IO_OUT, writable, this);
}

/// @return whether the line is out
bool LineWriter::writeOn() {
  while (written_ < line_.size()) {
    const ssize_t count = ::write(STDOUT_FILENO, line_.data() + written_, line_.size() - written_);
    if (count >= 0) {
      written_ += static_cast<size_t>(count);
    } else if (errno == EAGAIN) {
      return false;
    } else if (errno != EINTR) {
      ::_exit(EXIT_SUCCESS);
    }
  }
  std::string().swap(line_);
  return true;
}

}  // namespace tarnwick
