#include "cli/ListenCLI.h"

#include <poll.h>
#include <signal.h>
#include <stdio.h>
#include <sys/signalfd.h>

#include "cli/EventListener.h"
#include "cli/SessionBus.h"

namespace tarnwick::ListenCLI {

bool run(const FilePath& socket, const std::string& bus) {
  // The socket is to go with us.
  sigset_t endings;
  ::sigemptyset(&endings);
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) ::sigaddset(&endings, signal);
  ::sigprocmask(SIG_BLOCK, &endings, nullptr);
  const Descriptor end(::signalfd(-1, &endings, SFD_CLOEXEC | SFD_NONBLOCK));

  // A courier is nobody's to wait for.
  ::signal(SIGCHLD, SIG_IGN);
  SessionBus poster(bus);
  EventListener listener([&](const StringMap& event) { poster.post(eventNotification, event); });
  if (const std::string problem = listener.listen(socket); !problem.empty()) {
    ::fprintf(stderr, "Tarnwick: cannot listen at %s: %s\n", socket.c_str(), problem.c_str());
    return false;
  }
  pollfd wakers[] = {{listener.descriptor(), POLLIN, 0}, {end, POLLIN, 0}};
  while (!wakers[1].revents) {
    if (::poll(wakers, 2, -1) > 0 && wakers[0].revents) listener.proceed();
  }
  return true;
}

}  // namespace tarnwick::ListenCLI
