#include <signal.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <cstdlib>

#include "bridge/MediaStream.h"

/// Follows the players of this session until standard input ends. Called by the interpreter that has loaded
/// this library; never returns.
extern "C" __attribute__((visibility("default"))) void tarnwick_stream() {
  // Whoever started us may be killed without a chance to close our input.
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  ::signal(SIGPIPE, SIG_IGN);
  auto* stream = new tarnwick::MediaStream;
  static_cast<void>(stream);
  g_main_loop_run(g_main_loop_new(nullptr, false));
  ::_exit(EXIT_SUCCESS);
}
