#pragma once
#include <fcntl.h>
#include <unistd.h>

namespace tarnwick {

/// Opens those of the descriptors 0 to 2 that whoever started us has left closed: the next file or socket
/// would be taken for the standard input or output otherwise.
inline void openStandardDescriptors() {
  for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
    if (::fcntl(descriptor, F_GETFD) < 0) (void)!::open("/dev/null", O_RDWR);
  }
}

}  // namespace tarnwick
