#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <QApplication>
#include <QSocketNotifier>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "app/AppDelegate.h"
#include "app/OpenDisplay.h"
#include "app/TakeSnapshots.h"
#include "base/StandardDescriptors.h"
#include "dbus/BusConnection.h"
#include "dbus/SessionBusAddress.h"
#include "linux/bus/BusWaiter.h"
#include "linux/process/Module.h"

namespace {

constexpr auto longestWaitForBus = std::chrono::milliseconds(500);
constexpr const char* sessionBusVariable = "DBUS_SESSION_BUS_ADDRESS";
/// Tells the program that it has started itself anew, because the bus answered.
constexpr const char* startedAnewVariable = "TARNWICK_STARTED_ANEW";

int signalPipe[2];

void noteSignal(int) {
  const char byte = 0;
  // Nothing can be done when the pipe is full: then the loop has been told already.
  [[maybe_unused]] const ssize_t written = ::write(signalPipe[1], &byte, 1);
}

/// Lets the loop end when the session or the user ends the process.
void quitOnSignals(QApplication& application) {
  if (::pipe2(signalPipe, O_CLOEXEC | O_NONBLOCK) != 0) return;
  auto* notifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, &application);
  QObject::connect(notifier, &QSocketNotifier::activated, &application, &QApplication::quit);
  struct sigaction action = {};
  action.sa_handler = noteSignal;
  action.sa_flags = SA_RESTART;
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) ::sigaction(signal, &action, nullptr);
}

/// The path of the command that users know: what started us, or its place beside this program.
std::string knownPath(const char* argument) {
  return std::filesystem::path(argument).filename() == "Tarnwick" ? argument : tarnwick::commandPath();
}

/// Sets a variable that only the toolkit's start shall see, not the programs that we start.
class StartupVariable {
 public:
  StartupVariable(const char* name, const char* value)
      : name_(name), wasSet_(qEnvironmentVariableIsSet(name)) {
    before_ = qgetenv(name);
    qputenv(name, value);
  }
  ~StartupVariable() { wasSet_ ? qputenv(name_, before_) : qunsetenv(name_); }

 private:
  const char* name_;
  bool wasSet_;
  QByteArray before_;
};

/// Keeps the session's bus from the whole program: the toolkit looks for assistive technology there as soon
/// as there is a window, which then does not show before the bus has answered.
class HiddenBus {
 public:
  HiddenBus() : address_(tarnwick::sessionBusAddress()), variable_(sessionBusVariable, "disabled:") {}
  const std::string& address() const { return address_; }

 private:
  const std::string address_;
  const StartupVariable variable_;
};

std::unique_ptr<QApplication> makeApplication(const char* plugin, int& count, char** arguments) {
  const StartupVariable platform("QT_QPA_PLATFORM", plugin);
  // Desktop themes load a second toolkit, for looks that none of our windows show.
  const StartupVariable theme("QT_QPA_PLATFORMTHEME", "generic");
  QCoreApplication::setAttribute(Qt::AA_DisableSessionManager);
  QApplication::setDesktopSettingsAware(false);
  auto application = std::make_unique<QApplication>(count, arguments);
  QApplication::setApplicationName("Tarnwick");
  QGuiApplication::setDesktopFileName("dev.tarnwick.Tarnwick");
  QApplication::setQuitOnLastWindowClosed(false);
  return application;
}

std::unique_ptr<tarnwick::AppDelegate> delegate;

/// When the display server goes, as it does at the end of many sessions, the toolkit ends the process.
void endByToolkit() {
  if (delegate) delegate->applicationWillTerminate();
  std::_Exit(EXIT_FAILURE);
}

}  // namespace

int main(int argc, char** argv) {
  tarnwick::openStandardDescriptors();
  // The last argument would be a switch without its folder, which means the overlay.
  const auto snapshot = std::find(argv, argv + argc - 1, std::string_view("--snapshot"));
  if (snapshot != argv + argc - 1) return tarnwick::takeSnapshots(snapshot[1]);
  const bool startedAnew = ::getenv(startedAnewVariable) != nullptr;
  ::unsetenv(startedAnewVariable);
  // Its answer comes while the display is being opened.
  const auto addresses = tarnwick::parseBusAddresses(tarnwick::sessionBusAddress());
  tarnwick::BusConnection bus(addresses, tarnwick::BusConnection::Peer::anybody);
  const auto display = tarnwick::openDisplay();
  if (!display) return EXIT_FAILURE;

  std::optional<HiddenBus> hiddenBus;
  // Nothing is known about buses of other kinds. One that has answered before is only slow.
  if (!addresses.empty() && !startedAnew &&
      bus.wait(longestWaitForBus) != tarnwick::BusConnection::State::answers) {
    hiddenBus.emplace();
  }

  // Unknown arguments mean the overlay, and mean nothing to the toolkit either.
  std::string command = knownPath(argv[0]);
  char* arguments[] = {command.data(), nullptr};
  int count = 1;
  const auto application = makeApplication(display->toolkitPlugin(), count, arguments);
  quitOnSignals(*application);

  delegate = std::make_unique<tarnwick::AppDelegate>(*display);
  const bool settings =
      std::find(argv, argv + argc, std::string_view("--settings")) != argv + argc && !startedAnew;
  if (delegate->anotherOverlayRuns()) {
    delegate->openThere(settings);
    return EXIT_SUCCESS;
  }
  delegate->applicationDidFinishLaunching(settings);
  std::atexit(endByToolkit);
  tarnwick::QtScheduler scheduler;
  tarnwick::BusWaiter busWaiter(scheduler);
  bool startAnew = false;
  if (hiddenBus) {
    busWaiter.wait([&] { return hiddenBus->address(); },
        [&] {
          startAnew = true;
          QApplication::quit();
        });
  }
  QApplication::exec();
  delegate->applicationWillTerminate();
  if (startAnew) {
    // Not everything that wants the bus can be told that it is there now.
    delegate.reset();
    hiddenBus.reset();
    ::setenv(startedAnewVariable, "1", 1);
    ::execv("/proc/self/exe", argv);
  }
  // Taking everything apart would only wait for services that may hang.
  std::_Exit(EXIT_SUCCESS);
}
