#include "PrivateBus.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <sstream>

namespace tarnwick {
namespace {

/// Looks at a file at each change of it until `isDone` accepts what it holds, for 20 seconds at most.
std::string waitForContents(const std::string& path, const std::function<bool(const std::string&)>& isDone) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  const int changes = ::inotify_init1(IN_NONBLOCK);
  EXPECT_GE(::inotify_add_watch(changes, path.c_str(), IN_MODIFY), 0) << path;
  std::string contents = contentsOf(path);
  while (!isDone(contents) && std::chrono::steady_clock::now() < deadline) {
    pollfd change{changes, POLLIN, 0};
    ::poll(&change, 1, 1000);
    char events[4096];
    while (::read(changes, events, sizeof events) > 0) {
    }
    contents = contentsOf(path);
  }
  ::close(changes);
  return contents;
}

/// The text between the first and the last quotation mark of a line.
std::string betweenQuotes(const std::string& line) {
  const size_t first = line.find('"');
  return line.substr(first + 1, line.rfind('"') - first - 1);
}

std::vector<BusListener::Signal> parse(const std::string& monitored) {
  std::vector<BusListener::Signal> signals;
  bool isOurs = false;
  std::istringstream lines(monitored);
  for (std::string line, key; std::getline(lines, line);) {
    if (line.starts_with("signal ")) {
      isOurs = line.find("path=/dev/tarnwick; interface=dev.tarnwick; member=") != line.npos;
      if (isOurs) signals.push_back({line.substr(line.rfind('=') + 1), {}});
    } else if (isOurs && line.find(" string \"") != line.npos) {
      if (key.empty()) {
        key = betweenQuotes(line);
      } else {
        signals.back().map[std::exchange(key, "")] = betweenQuotes(line);
      }
    }
  }
  return signals;
}

size_t occurrences(const std::string& text, const std::string& part) {
  size_t count = 0;
  for (size_t at = text.find(part); at != text.npos; at = text.find(part, at + part.size())) ++count;
  return count;
}

}  // namespace

PrivateBus::PrivateBus()
    : daemon_({"dbus-daemon", "--session", "--nofork", "--nopidfile", "--address=" + address(),
               "--print-address=1"},
              {}) {
  waitForContents(daemon_.outputPath(), [](const std::string& text) { return text.ends_with('\n'); });
}

BusListener::BusListener(const PrivateBus& bus)
    : monitor_({"dbus-monitor", "--address", bus.address(), "type='signal',interface='dev.tarnwick'"}, {}) {
  // A monitor loses its name at the moment from which it hears everything.
  waitForContents(monitor_.outputPath(),
                  [](const std::string& text) { return text.find("NameLost") != text.npos; });
}

std::vector<BusListener::Signal> BusListener::waitFor(size_t count) {
  return parse(waitForContents(monitor_.outputPath(), [&](const std::string& text) {
    // The end of the map of each signal.
    return occurrences(text, "\n   ]\n") >= count;
  }));
}

}  // namespace tarnwick
