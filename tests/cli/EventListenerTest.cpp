#include "cli/EventListener.h"

#include <gmock/gmock.h>
#include <poll.h>
#include <sys/stat.h>

#include <filesystem>

#include "ChildProcess.h"
#include "cli/RemotePoster.h"
#include "dbus/LocalSocket.h"

using namespace tarnwick;
using namespace std::chrono_literals;
namespace fs = std::filesystem;

namespace {

class EventListenerTest : public testing::Test {
 protected:
  EventListenerTest() { EXPECT_EQ(listener.listen(path), ""); }

  Descriptor call() const {
    Descriptor client = connectTo({path}, SOCK_STREAM);
    EXPECT_GE(client, 0);
    return client;
  }
  /// Proceeds until that many events have come in all, or until nothing more comes for a while.
  const std::vector<std::string>& await(size_t count, std::chrono::milliseconds patience = 20s) {
    const auto end = std::chrono::steady_clock::now() + patience;
    while (heard.size() < count && std::chrono::steady_clock::now() < end) proceed(10ms);
    return heard;
  }
  bool proceed(std::chrono::milliseconds patience = 0ms) {
    pollfd ready{listener.descriptor(), POLLIN, 0};
    if (::poll(&ready, 1, static_cast<int>(patience.count())) != 1) return false;
    listener.proceed();
    return true;
  }
  /// Takes in all that lies there. @return whether it comes to rest
  bool comesToRest() {
    for (int turn = 0; turn < 1000; ++turn) {
      if (!proceed()) return true;
    }
    return false;
  }
  static void say(int client, std::string_view text) {
    EXPECT_EQ(::send(client, text.data(), text.size(), MSG_NOSIGNAL), static_cast<ssize_t>(text.size()));
  }
  static bool isClosed(int client) {
    char byte;
    return ::recv(client, &byte, 1, MSG_DONTWAIT) == 0 || errno == ECONNRESET;
  }
  static std::string line(const std::string& prompt) { return R"({"prompt":")" + prompt + "\"}\n"; }

  const TemporaryFolder folder;
  const std::string path = folder.path() + "/tarnwick/events";
  std::vector<std::string> heard;
  EventListener listener{
      [this](const StringMap& event) { heard.push_back(valueOf(event, "prompt").value_or("(none)")); }};
};

TEST_F(EventListenerTest, TakesLinesHoweverTheyArrive) {
  const Descriptor first = call(), second = call();
  say(first, R"({"prompt":)");
  say(second, line("whole") + "\n\nnot JSON\n[]\n7\n" + line("after") + R"({"prompt":)");
  EXPECT_EQ(await(2), (std::vector<std::string>{"whole", "after"}));
  say(first, R"("in parts"})");
  EXPECT_TRUE(comesToRest());
  EXPECT_EQ(heard.size(), 2u);
  say(first, "\n");
  await(3);
  {
    const Descriptor unfinished = call();
    say(unfinished, line("last").substr(0, 17));
  }
  EXPECT_EQ(await(4), (std::vector<std::string>{"whole", "after", "in parts", "last"}));
  EXPECT_TRUE(comesToRest()) << "nothing to do at rest";
}

TEST_F(EventListenerTest, AnEndlessLineEndsItsWriter) {
  const Descriptor endless = call(), other = call();
  const std::string bytes(64 << 10, 'x');
  size_t sent = 0;
  while (sent < (64 << 20)) {
    const ssize_t count = ::send(endless, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (count < 0 && errno != EAGAIN) break;
    if (count > 0) sent += static_cast<size_t>(count);
    proceed();
  }
  EXPECT_LT(sent, 2u << 20) << "what it wrote is not kept";
  EXPECT_TRUE(isClosed(endless));
  say(other, line("other"));
  EXPECT_EQ(await(1), std::vector<std::string>{"other"});
}

TEST_F(EventListenerTest, AFloodHasToWait) {
  const Descriptor flood = call();
  std::string lines;
  for (int number = 0; number < 300; ++number) lines += line(std::to_string(number));
  say(flood, lines);
  const auto start = std::chrono::steady_clock::now();
  // As long as a burst allows it comes at once, then the loop has a rest.
  EXPECT_TRUE(comesToRest());
  EXPECT_GE(heard.size(), 200u);
  EXPECT_LT(heard.size(), 250u);
  say(flood, line("end"));
  await(301);
  ASSERT_EQ(heard.size(), 301u) << "nothing is lost";
  EXPECT_EQ(heard[299], "299");
  EXPECT_GT(std::chrono::steady_clock::now() - start, 800ms);
}

TEST_F(EventListenerTest, ManyThatSayNothingKeepNobodyOutForLong) {
  std::vector<Descriptor> silent;
  for (int number = 0; number < 40; ++number) silent.push_back(call());
  EXPECT_TRUE(comesToRest());
  const Descriptor late = call();
  say(late, line("late"));
  EXPECT_TRUE(comesToRest());
  EXPECT_TRUE(heard.empty()) << "there is no place yet";
  EXPECT_EQ(await(1), std::vector<std::string>{"late"});
  EXPECT_TRUE(isClosed(silent[0]));
}

TEST_F(EventListenerTest, OnlyThisUserReachesIt) {
  struct stat file;
  ASSERT_EQ(::stat(path.c_str(), &file), 0);
  EXPECT_EQ(file.st_mode & 0777, 0600u);
  ASSERT_EQ(::stat((folder.path() + "/tarnwick").c_str(), &file), 0);
  EXPECT_EQ(file.st_mode & 0777, 0700u);

  if (::geteuid() != 0) GTEST_SKIP() << "only root can be two users";
  for (const std::string& each : {folder.path(), folder.path() + "/tarnwick", path}) {
    fs::permissions(each, fs::perms::all);
  }
  ASSERT_EQ(::seteuid(65534), 0);
  const Descriptor stranger = call();
  ASSERT_EQ(::seteuid(0), 0);
  say(stranger, line("stranger"));
  EXPECT_TRUE(comesToRest());
  EXPECT_TRUE(isClosed(stranger));
  EXPECT_TRUE(heard.empty());
}

TEST_F(EventListenerTest, LeavesAloneWhatIsNotLeftBehind) {
  const auto refusal = [](const std::string& where) {
    return EventListener([](const StringMap&) {}).listen(where);
  };
  EXPECT_EQ(refusal(path), "somebody listens there already");
  EXPECT_EQ(refusal(folder.write("file", "mine")), "there is something else");
  EXPECT_EQ(contentsOf(folder.path() + "/file"), "mine");
  EXPECT_EQ(refusal(folder.path() + "/" + std::string(200, 'x')), "the path is too long for a socket");
  EXPECT_EQ(refusal(folder.path() + "/none/none/events"), "No such file or directory");
  EXPECT_EQ(refusal(folder.path() + "/file/events"), "Not a directory");
  const std::string open = folder.path() + "/open";
  fs::create_directory(open);
  fs::permissions(open, fs::perms::all);
  EXPECT_EQ(refusal(open + "/events"), "others could put something else in its place in that folder");
  say(call(), line("still there"));
  EXPECT_EQ(await(1), std::vector<std::string>{"still there"});

  // One that was killed leaves its socket.
  const std::string left = folder.path() + "/left";
  {
    const Descriptor dead(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const LocalName name({left});
    ASSERT_EQ(::bind(dead, name.pointer(), name.length), 0);
  }
  {
    EventListener next([](const StringMap&) {});
    EXPECT_EQ(next.listen(left), "");
    EXPECT_GE(connectTo({left}, SOCK_STREAM), 0);
  }
  EXPECT_FALSE(fs::exists(left)) << "it takes its socket along";
}

TEST_F(EventListenerTest, HearsWhatHooksPost) {
  RemotePoster(path, "here").post(eventNotification, {{"hook_event_name", "Stop"}, {"prompt", "one"}});
  RemotePoster(path, "here").post(showcaseNotification, {{"prompt", "none of its business"}});
  RemotePoster(folder.path() + "/nowhere", "here").post(eventNotification, {{"prompt", "lost"}});
  std::vector<std::string> all{"one"};
  // More than have a place.
  for (int number = 0; number < 100; ++number) {
    RemotePoster(path, "here").post(eventNotification, {{"prompt", std::to_string(number)}});
    all.push_back(std::to_string(number));
  }
  EXPECT_EQ(await(101), all);
}

TEST(RemotePoster, EndsSoonWhereNobodyTakesWhatItPosts) {
  const TemporaryFolder folder;
  const std::string path = folder.path() + "/full";
  const Descriptor full(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  const LocalName name({path});
  ASSERT_EQ(::bind(full, name.pointer(), name.length), 0);
  ASSERT_EQ(::listen(full, 0), 0);
  const Descriptor first = connectTo({path}, SOCK_STREAM);
  const auto start = std::chrono::steady_clock::now();
  RemotePoster(path, "here").post(eventNotification, {{"prompt", "x"}});
  EXPECT_LT(std::chrono::steady_clock::now() - start, 1s);
}

}  // namespace
