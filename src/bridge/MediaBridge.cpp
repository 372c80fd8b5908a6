#include <signal.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <cstdlib>

#include "base/AddressSpace.h"
#include "bridge/MediaStream.h"

/// Follows the players of this session until standard input ends. Called by the interpreter that has loaded
/// this library; never returns.
extern "C" __attribute__((visibility("default"))) void tarnwick_stream() {
  // Whoever started us may be killed without a chance to close our input.
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  ::signal(SIGPIPE, SIG_IGN);
  // The bus passes on messages of any size. One that does not fit ends the bridge, which is then started
  // again.
  tarnwick::limitAddressSpace(size_t{96} << 20);
  auto* stream = new tarnwick::MediaStream;
  static_cast<void>(stream);
  g_main_loop_run(g_main_loop_new(nullptr, false));
  ::_exit(EXIT_SUCCESS);
}
