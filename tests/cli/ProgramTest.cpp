#include <gmock/gmock.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <filesystem>
#include <memory>
#include <random>
#include <thread>

#include "ChildProcess.h"
#include "FakeBus.h"
#include "PrivateBus.h"
#include "base/AtomicFile.h"
#include "json/JsonValue.h"

using namespace tarnwick;
using namespace std::chrono_literals;
namespace fs = std::filesystem;

namespace {

#ifdef __SANITIZE_ADDRESS__
constexpr size_t manyHooks = 200;
constexpr auto startingTime = 2000ms;
constexpr size_t manySettings = 2000;
#else
constexpr size_t manyHooks = 2000;
constexpr auto startingTime = 0ms;
constexpr size_t manySettings = 20000;
#endif

const std::string program = TARNWICK_PROGRAM;

std::vector<std::string> at(const std::string& address) { return {"DBUS_SESSION_BUS_ADDRESS=" + address}; }

/// Runs the program, which has to be silent and content.
void expectSilence(const std::vector<std::string>& arguments, const std::vector<std::string>& environment,
    const std::string& input = "{}") {
  std::vector<std::string> all{program};
  all.insert(all.end(), arguments.begin(), arguments.end());
  const auto result = ChildProcess::run(all, environment, input);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output + result.error, "");
  EXPECT_LT(result.duration, startingTime + 500ms);
}

/// A copy of the program in a tree of its own, in a folder whose name is a test of the shell's quoting.
class InstalledTree {
 public:
  InstalledTree() {
    fs::create_directories(folder + "/bin");
    fs::create_directories(folder + "/libexec/Tarnwick");
    fs::copy_file(program, executable);
  }
  const TemporaryFolder root;
  const std::string folder = fs::canonical(root.path()).string() + "/it's \"$HOME\" `a` \\ 'Tarn";
  const std::string executable = folder + "/bin/Tarnwick";
};

/// What a hook adds to an event: it was called by this program.
StringMap calledByUs(StringMap event) {
  event["process"] = std::to_string(::getpid());
  // It reads "pid:[4026531836]".
  const std::string space = fs::read_symlink("/proc/self/ns/pid");
  event["process_namespace"] = space.substr(5, space.size() - 6);
  return event;
}

TEST(Program, RelaysHookEvents) {
  const PrivateBus bus;
  BusListener listener(bus);
  expectSilence({"--hook"}, at(bus.address()), R"({"session_id":"1","prompt":"caf\u00e9 \u0000","cwd":7})");
  // It wins over every other role; the address may be the last of several, or come from the runtime folder.
  expectSilence({"--demo", "--install-hooks", "--hook"}, at("unix:path=/none;" + bus.address()), "{}");
  expectSilence({"--hook"},
      {"DBUS_SESSION_BUS_ADDRESS=unix:path=/none", "XDG_RUNTIME_DIR=" + bus.folder(), "WINDOWID=12",
          "TMUX_PANE=%3", "STY=", "TMUX=" + std::string(257, '/')},
      R"({"session_id":"3"})");
  expectSilence({"--hook"}, at(bus.address()), "[]");
  expectSilence({"--hook"}, at(bus.address()), R"({"session_id":"not JSON)");
  expectSilence({"--showcase", "type", "it's \xE9"}, at(bus.address()));
  expectSilence({"--showcase", "begin"}, at(bus.address()));

  const auto signals = listener.waitFor(5);
  ASSERT_EQ(signals.size(), 5u);
  EXPECT_EQ(signals[0].member, "event");
  EXPECT_EQ(signals[0].map, calledByUs({{"session_id", "1"}, {"prompt", "café \uFFFD"}}));
  EXPECT_EQ(signals[1].map, StringMap());
  EXPECT_EQ(signals[2].map, calledByUs({{"session_id", "3"}, {"WINDOWID", "12"}, {"TMUX_PANE", "%3"}}));
  EXPECT_EQ(signals[3].member, "showcase");
  EXPECT_EQ(signals[3].map, (StringMap{{"cmd", "type"}, {"arg", "it's \uFFFD"}}));
  EXPECT_EQ(signals[4].map, (StringMap{{"cmd", "begin"}, {"arg", ""}}));
}

TEST(Program, RelaysEveryOneOfManyHookEvents) {
  const PrivateBus bus;
  BusListener listener(bus);
  std::atomic<size_t> next = 0;
  std::vector<std::thread> callers;
  for (int caller = 0; caller < 8; ++caller) {
    callers.emplace_back([&] {
      for (size_t number = next++; number < manyHooks; number = next++) {
        const std::string event = R"({"session_id":")" + std::to_string(number) + R"("})";
        EXPECT_EQ(ChildProcess::run({program, "--hook"}, at(bus.address()), event).status, 0);
      }
    });
  }
  for (std::thread& caller : callers) caller.join();
  std::vector<bool> hasCome(manyHooks);
  for (const auto& signal : listener.waitFor(manyHooks))
    hasCome[std::stoul(signal.map.at("session_id"))] = true;
  EXPECT_THAT(hasCome, testing::Each(true));
}

#ifndef __SANITIZE_ADDRESS__
TEST(Program, RelaysWhateverComesInWithLittleMemory) {
  const PrivateBus bus;
  BusListener listener(bus);
  const std::string much(20 << 20, '1'), brackets(20 << 20, '['), prompt = R"("prompt":"x"})";
  for (const std::string& event : {R"({"cwd":")" + much + "\"," + prompt,
           R"({"ignored":")" + much + "\"," + prompt, "{\"" + much + "\":1," + prompt,
           R"({"ignored":0.)" + much + "," + prompt, brackets + "{" + prompt}) {
    const auto result = ChildProcess::run(
        {"sh", "-c", "ulimit -v 16384; exec \"$0\" --hook", program}, at(bus.address()), event);
    EXPECT_EQ(result.status, 0);
  }
  const auto signals = listener.waitFor(4);
  ASSERT_EQ(signals.size(), 4u);
  for (const auto& signal : signals) EXPECT_EQ(signal.map.at("prompt"), "x");
  EXPECT_EQ(signals[0].map.at("cwd"), std::string(200, '1'));
}
#endif

/// How many processes run this program.
size_t processesOf(const std::string& executable) {
  size_t count = 0;
  for (const auto& process : fs::directory_iterator("/proc")) {
    std::error_code error;
    count += fs::read_symlink(process.path() / "exe", error) == executable;
  }
  return count;
}

TEST(Program, LeavesToOneCourierWhatAStoppedBusDoesNotTake) {
  const InstalledTree tree;
  PrivateBus bus;
  BusListener listener(bus);
  const auto post = [&](const std::string& event) {
    // Whoever waits for the end of the hook's output does not wait for the courier.
    const auto result = ChildProcess::run(
        {"sh", "-c", "\"$0\" --hook 2>&1 | cat", tree.executable}, at(bus.address()), event);
    EXPECT_EQ(result.output, "");
    EXPECT_LT(result.duration, startingTime + 500ms);
  };
  bus.signal(SIGSTOP);
  std::vector<std::thread> sessions;
  for (int session = 0; session < 3; ++session) {
    sessions.emplace_back([&, session] {
      for (int event = 0; event < 4; ++event) {
        post(R"({"session_id":")" + std::to_string(session) + R"(","prompt":")" + std::to_string(event) +
             "\"}");
      }
    });
  }
  for (std::thread& session : sessions) session.join();
  EXPECT_EQ(processesOf(tree.executable), 1u);
  bus.signal(SIGCONT);

  std::map<std::string, std::string> events;
  for (const auto& signal : listener.waitFor(12))
    events[signal.map.at("session_id")] += signal.map.at("prompt");
  for (int session = 0; session < 3; ++session) EXPECT_EQ(events[std::to_string(session)], "0123");
  for (int tries = 0; tries < 1000 && processesOf(tree.executable) > 0; ++tries)
    std::this_thread::sleep_for(10ms);
  EXPECT_EQ(processesOf(tree.executable), 0u);
}

TEST(Program, TellsNothingToStrangers) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can be two users";
  const FakeBus bus(
      [](int connection) {
        char byte;
        EXPECT_LE(::read(connection, &byte, 1), 0);
      },
      8, 65534);
  expectSilence({"--hook"}, at(bus.address()));
}

TEST(Program, EndsSoonAndSilentlyWithoutAWorkingBus) {
  const auto oneByteAtATime = [](int connection) {
    for (size_t index = 0;
         ::send(connection, &"DATA\r\nOK 0123\r\nl"[std::min<size_t>(index, 15)], 1, MSG_NOSIGNAL) == 1;
         ++index) {
      std::this_thread::sleep_for(1ms);
    }
  };
  const auto flood = [](int connection) {
    const std::string bytes =
        "OK\r\n" + std::string("l\4\1\1\0\0\0\1\1\0\0\0\0\0\0\0", 16) + std::string(65536, 'x');
    while (::send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL) > 0) {
    }
  };
  for (const std::function<void(int)>& treat :
      std::initializer_list<std::function<void(int)>>{nullptr, oneByteAtATime, flood, [](int) {}}) {
    expectSilence({"--hook"}, at(FakeBus(treat).address()));
  }
  const auto closed = ChildProcess::run(
      {"sh", "-c", "exec timeout 5 \"$0\" --hook <&- >&- 2>&-", program}, at(FakeBus(nullptr).address()));
  EXPECT_EQ(closed.status, 0);
  EXPECT_LT(closed.duration, startingTime + 500ms);

  for (const std::string& address : {std::string(), std::string("nonsense"),
           std::string("unix:path=/dev/null"), "unix:abstract=" + std::string(200, 'x')}) {
    expectSilence({"--hook"}, at(address));
    expectSilence({"--showcase", "begin"}, at(address));
  }
}

TEST(Program, AnswersWithItsExitStatus) {
  const TemporaryFolder home;
  const std::vector<std::string> environment{"HOME=" + home.path() + "//"};
  const auto status = [&](const std::vector<std::string>& arguments) {
    std::vector<std::string> all{program};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return ChildProcess::run(all, environment).status;
  };
  const std::string path = home.path() + "/.claude/settings.json";
  EXPECT_EQ(status({"--install-hooks", "--uninstall-hooks"}), 0);
  EXPECT_NE(contentsOf(path).find("Tarnwick' --hook"), std::string::npos);
  EXPECT_EQ(status({"--uninstall-hooks"}), 0);
  EXPECT_EQ(contentsOf(path), "{}\n");
  ASSERT_FALSE(writeFileAtomically(path, "[]"));
  EXPECT_EQ(status({"--install-hooks"}), 1);
  EXPECT_EQ(status({"--uninstall-hooks"}), 1);
  EXPECT_EQ(contentsOf(path), "[]");

  const auto help = ChildProcess::run({program, "--version", "--help"}, {});
  EXPECT_EQ(help.status, 0);
  EXPECT_THAT(help.output, testing::StartsWith("Usage: Tarnwick"));
  EXPECT_THAT(
      ChildProcess::run({program, "--version"}, {}).output, testing::MatchesRegex("Tarnwick [0-9.]+\n"));
}

TEST(Program, PassesOnWhatComesFromElsewhere) {
  const PrivateBus bus;
  BusListener listener(bus);
  const TemporaryFolder folder;
  const std::string socket = folder.path() + "/events";
  ChildProcess listening({program, "--listen", socket}, at(bus.address()));
  while (!fs::exists(socket)) std::this_thread::sleep_for(1ms);
  const auto second = ChildProcess::run({program, "--listen", socket}, at(bus.address()));
  EXPECT_EQ(second.status, 1);
  // The first one may be about to only.
  EXPECT_THAT(second.error, testing::StartsWith("Tarnwick: cannot listen at " + socket + ": somebody "));

  // With a bus of its own, to which it says nothing then.
  auto environment = at(bus.address());
  environment.insert(
      environment.end(), {"TARNWICK_SOCKET=" + socket, "TARNWICK_MACHINE=devbox", "WINDOWID=7"});
  expectSilence({"--hook"}, environment, R"({"session_id":"s","transcript_path":"/t"})");
  const StringMap event{{"machine", "devbox"}, {"session_id", "elsewhere,6,devbox,s"}};
  EXPECT_EQ(listener.waitFor(1).at(0).map, event);

  listening.signal(SIGTERM);
  EXPECT_EQ(listening.wait().status, 0);
  EXPECT_FALSE(fs::exists(socket));
  expectSilence({"--hook"}, environment);
}

TEST(Program, SaysWhichWaysALevelGoes) {
  const PrivateBus bus;
  const auto result = ChildProcess::run({program, "--volume", "louder"}, at(bus.address()));
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.error, "Tarnwick: --volume takes up, down or mute\n");
}

TEST(Program, SaysThatNoOverlayRuns) {
  const auto expectRefusal = [](const std::string& address, std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), program);
    const auto result = ChildProcess::run(arguments, at(address));
    EXPECT_EQ(result.status, 1) << arguments[1];
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.error, "Tarnwick: the overlay does not run\n");
    EXPECT_LT(result.duration, startingTime + 500ms);
  };
  const PrivateBus bus;
  const std::initializer_list<std::vector<std::string>> roles{
      {"--open", "tray"}, {"--next"}, {"--volume", "up"}, {"--sessions"}, {"--sessions", "--follow"}};
  for (const auto& role : roles) expectRefusal(bus.address(), role);
  expectRefusal("", {"--sessions"});
  expectRefusal(FakeBus([](int) {}).address(), {"--sessions"});
  using namespace std::string_literals;
  for (const std::string& reply : {"HTTP/1.1 400\r\n"s, "OK\r\nx"s + std::string(15, '\0'),
           // Too long; and a field beyond the message's end.
           "OK\r\nl\2\1\1\xFF\xFF\xFF\xFF\1\0\0\0\0\0\0\0"s,
           "OK\r\nl\2\1\1\0\0\0\0\1\0\0\0\x8\0\0\0\6\1s\0\xFF\xFF\xFF\xFF"s}) {
    expectRefusal(FakeBus([&](int connection) {
      char bytes[4096];
      (void)!::read(connection, bytes, sizeof bytes);
      (void)!::write(connection, reply.data(), reply.size());
      while (::read(connection, bytes, sizeof bytes) > 0) continue;
    }).address(),
        {"--sessions"});
  }
}

TEST(Program, BecomesTheOverlay) {
  const InstalledTree tree;
  const std::string overlay = tree.folder + "/bin/../libexec/Tarnwick/overlay";
  const auto missing = ChildProcess::run({tree.executable}, {});
  EXPECT_EQ(missing.status, 127);
  EXPECT_EQ(
      missing.error, "Tarnwick: could not start the overlay " + overlay + ": No such file or directory\n");

  // What stands in for the overlay tells its arguments and its environment.
  ASSERT_FALSE(writeFileAtomically(overlay, "#!/bin/sh\nprintf '%s\\n' \"$@\" \"$A\"; exit 7\n", 0700));
  fs::create_symlink(tree.executable, tree.root.path() + "/link");
  for (const std::string& start : {tree.executable, tree.root.path() + "/link"}) {
    const auto result = ChildProcess::run({start, "--unknown", "a b"}, {"A=1"});
    EXPECT_EQ(result.status, 7);
    EXPECT_EQ(result.output, "--unknown\na b\n1\n");
    EXPECT_EQ(ChildProcess::run({start, "--snapshot", "/out"}, {}).output, "--snapshot\n/out\n\n");
  }

  // Argument 0 is the program's real path.
  fs::remove(overlay);
  fs::copy_file("/bin/cat", overlay);
  const auto result = ChildProcess::run({tree.root.path() + "/link", "/proc/self/cmdline"}, {});
  EXPECT_EQ(result.output, tree.executable + std::string("\0/proc/self/cmdline\0", 20));
}

TEST(Program, IsRunByTheCommandThatItInstalls) {
  const InstalledTree tree;
  const PrivateBus bus;
  BusListener listener(bus);
  const auto installed =
      ChildProcess::run({tree.executable, "--install-hooks"}, {"HOME=" + tree.root.path()});
  ASSERT_EQ(installed.status, 0);
  const size_t start = installed.output.find("Command: ") + 9;
  const std::string command = installed.output.substr(start, installed.output.size() - start - 1);

  const auto result =
      ChildProcess::run({"sh", "-c", command}, at(bus.address()), R"({"session_id":"quoted"})");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.error, "");
  const auto signals = listener.waitFor(1);
  ASSERT_EQ(signals.size(), 1u);
  EXPECT_EQ(signals[0].map, calledByUs({{"session_id", "quoted"}})) << "not by the shell";

  ASSERT_EQ(
      ChildProcess::run({tree.executable, "--uninstall-hooks"}, {"HOME=" + tree.root.path()}).status, 0);
  EXPECT_EQ(contentsOf(tree.root.path() + "/.claude/settings.json"), "{}\n");
}

/// A settings file that takes a while to write, and the two texts that it may ever hold.
class LargeSettings {
 public:
  LargeSettings() {
    JsonArray list(manySettings, JsonValue{JsonObject{{"key", {"some text of the user's"}}}});
    fs::create_directories(home.path() + "/.claude");
    uninstalled = writeJson({JsonObject{{"list", {std::move(list)}}}});
    EXPECT_FALSE(writeFileAtomically(path, uninstalled));
    start("--install-hooks")->wait();
    installed = contentsOf(path);
    start("--uninstall-hooks")->wait();
    EXPECT_EQ(contentsOf(path), uninstalled);
    EXPECT_NE(installed, uninstalled);
  }
  std::unique_ptr<ChildProcess> start(const std::string& role) const {
    return std::make_unique<ChildProcess>(std::vector{program, role}, std::vector{"HOME=" + home.path()});
  }
  bool areWhole() const {
    return std::ranges::all_of(
        std::array{path, path + ".bak-tarnwick", path + ".bak-tarnwick-first"}, [&](auto& file) {
          const std::string contents = contentsOf(file);
          return contents == installed || contents == uninstalled;
        });
  }
  const TemporaryFolder home;
  const std::string path = home.path() + "/.claude/settings.json";
  std::string installed, uninstalled;
};

TEST(Program, KilledAtAnyInstantLeavesWholeFiles) {
  const LargeSettings settings;
  const auto usual = settings.start("--install-hooks")->wait().duration;
  std::mt19937 random(1);
  std::uniform_int_distribution<long> instant(0, std::chrono::microseconds(usual).count());
  for (int round = 0; round < 60; ++round) {
    const auto process = settings.start(round % 2 ? "--install-hooks" : "--uninstall-hooks");
    // The instant of the kill is what varies here: nothing is waited for.
    std::this_thread::sleep_for(std::chrono::microseconds(instant(random)));
    process->signal(SIGKILL);
    process->wait();
    ASSERT_TRUE(settings.areWhole());
  }
  settings.start("--install-hooks")->wait();
  const fs::directory_iterator files(fs::path(settings.path).parent_path());
  EXPECT_EQ(std::distance(begin(files), end(files)), 3) << "the next run clears what a killed one leaves";
}

TEST(Program, RunSeveralTimesAtOnceLeavesWholeFiles) {
  const LargeSettings settings;
  for (int round = 0; round < 10; ++round) {
    std::vector<std::unique_ptr<ChildProcess>> processes;
    for (const char* role :
        {"--install-hooks", "--uninstall-hooks", "--install-hooks", "--uninstall-hooks"}) {
      processes.push_back(settings.start(role));
    }
    for (const auto& process : processes) EXPECT_EQ(process->wait().status, 0);
    ASSERT_TRUE(settings.areWhole());
  }
}

}  // namespace
