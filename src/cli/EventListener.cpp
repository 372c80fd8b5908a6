#include "cli/EventListener.h"

#include <fcntl.h>
#include <sys/epoll.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/timerfd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "cli/RemoteEvent.h"
#include "dbus/LocalSocket.h"

namespace tarnwick {
namespace {

using namespace std::chrono_literals;

constexpr size_t mostClients = 32, longestLine = 256 << 10;
constexpr int mostCallers = 128;
constexpr double burst = 200, perSecond = 100;
/// After a flood the next events wait until as many may come.
constexpr double enough = 10;
/// For which a client keeps its place when others want it.
constexpr auto patience = 2s;

std::string failure() { return std::strerror(errno); }

std::pair<uint64_t, uint64_t> identityOf(const FilePath& path) {
  struct stat file;
  return ::lstat(path.c_str(), &file) == 0
             ? std::pair(uint64_t(file.st_dev), uint64_t(file.st_ino))
             : std::pair<uint64_t, uint64_t>();
}

/// Whether nobody but this user and root can put something else in the place of a file in it.
bool isSafe(int folder) {
  struct stat status;
  if (::fstat(folder, &status) != 0 || (status.st_uid != ::geteuid() && status.st_uid != 0)) return false;
  return !(status.st_mode & (S_IWGRP | S_IWOTH)) || (status.st_mode & S_ISVTX);
}

/// Makes room for a socket. @return what is wrong
std::string clear(const FilePath& path) {
  struct stat file;
  if (::lstat(path.c_str(), &file) != 0) return errno == ENOENT ? "" : failure();
  if (!S_ISSOCK(file.st_mode)) return "there is something else";
  if (file.st_uid != ::geteuid()) return "the socket there belongs to another user";
  if (connectTo({path}, SOCK_STREAM) >= 0 || errno != ECONNREFUSED) return "somebody listens there already";
  return ::unlink(path.c_str()) == 0 ? "" : failure();
}

void follow(int waiter, int descriptor, void* tag = nullptr) {
  epoll_event event{.events = EPOLLIN, .data = {.ptr = tag}};
  ::epoll_ctl(waiter, EPOLL_CTL_ADD, descriptor, &event);
}

void leave(int waiter, int descriptor) { ::epoll_ctl(waiter, EPOLL_CTL_DEL, descriptor, nullptr); }

}  // namespace

EventListener::EventListener(std::function<void(const StringMap&)> receive)
    : receive_(std::move(receive)), budget_(burst) {}

EventListener::~EventListener() {
  if (listener_ >= 0 && identityOf(path_) == identity_) ::unlink(path_.c_str());
}

std::string EventListener::listen(const FilePath& path) {
  const LocalName name({path});
  if (name.length == 0) return "the path is too long for a socket";
  const size_t slash = path.rfind('/');
  const FilePath folder = slash == path.npos ? "." : path.substr(0, slash + 1);
  if (::mkdir(folder.c_str(), S_IRWXU) != 0 && errno != EEXIST) return failure();
  const Descriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (opened < 0) return failure();
  if (!isSafe(opened)) return "others could put something else in its place in that folder";
  // Two that start at once would each take the other's socket for one that was left behind.
  if (::flock(opened, LOCK_EX | LOCK_NB) != 0) return "somebody is about to listen there";
  if (const std::string problem = clear(path); !problem.empty()) return problem;

  Descriptor listener(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  // The file takes over what the socket is open to.
  if (::fchmod(listener, S_IRUSR | S_IWUSR) != 0 || ::bind(listener, name.pointer(), name.length) != 0 ||
      ::listen(listener, mostCallers) != 0)
    return failure();
  listener_ = std::move(listener);
  path_ = path;
  identity_ = identityOf(path);
  sockets_ = Descriptor(::epoll_create1(EPOLL_CLOEXEC));
  wakers_ = Descriptor(::epoll_create1(EPOLL_CLOEXEC));
  alarm_ = Descriptor(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK));
  follow(wakers_, alarm_);
  rest();
  return "";
}

void EventListener::proceed() {
  uint64_t rings;
  (void)!::read(alarm_, &rings, sizeof rings);
  const auto now = Clock::now();
  const std::chrono::duration<double> passed = now - std::exchange(reckoned_, now);
  budget_ = std::min(burst, budget_ + passed.count() * perSecond);
  if (clients_.size() == mostClients) {
    std::erase_if(clients_, [&](const Client& client) { return now - client.heard >= patience; });
  }
  std::erase_if(clients_, [this](Client& client) { return !passOn(client); });
  if (budget_ >= 1) {
    epoll_event ready[8];
    const int count = ::epoll_wait(sockets_, ready, std::size(ready), 0);
    for (int index = 0; index < count; ++index) {
      auto* client = static_cast<Client*>(ready[index].data.ptr);
      if (!client) {
        accept();
      } else if (!read(*client)) {
        std::erase_if(clients_, [&](const Client& each) { return &each == client; });
      }
    }
  }
  rest();
}

void EventListener::accept() {
  Descriptor socket(::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
  if (socket < 0 || !isTrusted(socket)) return;
  Client& client = clients_.emplace_back(Client{.socket = std::move(socket), .heard = Clock::now()});
  follow(sockets_, client.socket, &client);
}

/// @return false when nothing more can come of it
bool EventListener::read(Client& client) {
  char bytes[16384];
  const ssize_t count = ::recv(client.socket, bytes, sizeof bytes, 0);
  if (count < 0 && (errno == EAGAIN || errno == EINTR)) return true;
  if (count > 0) {
    client.text.append(bytes, static_cast<size_t>(count));
    client.heard = Clock::now();
  } else {
    client.socket = Descriptor();
    // What comes last may lack its end.
    client.text += '\n';
  }
  return passOn(client);
}

/// Passes on as many of its lines as may be now. @return false when nothing more can come of it
bool EventListener::passOn(Client& client) {
  while (budget_ >= 1) {
    const size_t end = client.text.find('\n', client.searched);
    client.searched = std::min(end, client.text.size());
    if (end == client.text.npos) return client.socket >= 0 && client.text.size() <= longestLine;
    const std::string line = client.text.substr(0, end);
    client.text.erase(0, end + 1);
    client.searched = 0;
    if (line.empty()) continue;
    --budget_;
    if (const auto event = readRemoteLine(line)) receive_(*event);
  }
  return true;
}

/// Leaves to the kernel what to wait for.
void EventListener::rest() {
  const bool mayAccept = clients_.size() < mostClients, mayRead = budget_ >= 1;
  if (mayAccept != std::exchange(isAccepting_, mayAccept)) {
    mayAccept ? follow(sockets_, listener_) : leave(sockets_, listener_);
  }
  if (mayRead != std::exchange(isReading_, mayRead)) {
    mayRead ? follow(wakers_, sockets_) : leave(wakers_, sockets_);
  }
  std::chrono::duration<double> pause{};
  if (!mayRead) {
    pause = std::chrono::duration<double>((enough - budget_) / perSecond);
  } else if (!mayAccept) {
    const auto heard = std::ranges::min_element(clients_, {}, &Client::heard)->heard;
    pause = std::max<std::chrono::duration<double>>(heard + patience - Clock::now(), 1ms);
  }
  const auto nanoseconds = std::chrono::duration_cast<std::chrono::nanoseconds>(pause).count();
  const itimerspec time{
      .it_value = {.tv_sec = nanoseconds / 1'000'000'000, .tv_nsec = nanoseconds % 1'000'000'000}};
  ::timerfd_settime(alarm_, 0, &time, nullptr);
}

}  // namespace tarnwick
