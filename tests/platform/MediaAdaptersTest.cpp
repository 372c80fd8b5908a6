// What now playing asks of the desktop: programs, pictures, applications.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/stat.h>

#include <QBuffer>
#include <QImage>
#include <QImageWriter>
#include <algorithm>
#include <filesystem>

#include "cover/CoverBytes.h"
#include "cover/PublicAddress.h"
#include "linux/files/DesktopApplications.h"
#include "linux/files/QtImageDecoder.h"
#include "linux/process/QtChildProcesses.h"
#include "linux/x11/X11WindowActivation.h"
#include "platform/TestDesktop.h"
#include "support/TemporaryFolder.h"

using namespace tarnwick;

namespace {

/// A program and all that is heard of it.
struct Program {
  explicit Program(QtChildProcesses& processes, const std::string& executable,
      const std::vector<std::string>& arguments = {}) {
    ChildProcesses::Events events;
    events.onReadable = [this] {
      const std::string bytes = child->read();
      output += bytes;
      if (bytes.empty()) {
        outputEnded = true;
      } else if (reads) {
        child->awaitOutput();
      }
    };
    events.onExit = [this] { ++exits; };
    events.onFailure = [this](const std::string& error) { failures.push_back(error); };
    child = processes.launch(executable, arguments, std::move(events));
    child->awaitOutput();
  }

  std::unique_ptr<ChildProcess> child;
  bool reads = true;
  std::string output;
  bool outputEnded = false;
  int exits = 0;
  std::vector<std::string> failures;
};

QByteArray encoded(const QImage& image, const char* format, bool progressive = false) {
  QBuffer buffer;
  QImageWriter writer(&buffer, format);
  writer.setProgressiveScanWrite(progressive);
  writer.write(image);
  return buffer.data();
}

std::string_view view(const QByteArray& bytes) {
  return {bytes.constData(), static_cast<size_t>(bytes.size())};
}

/// Data folders of the test's own, for as long as it lives.
class DataFolder {
 public:
  DataFolder() {
    qputenv("XDG_DATA_HOME", folder.path().c_str());
    qputenv("XDG_DATA_DIRS", (folder.path() + "/system").c_str());
  }
  ~DataFolder() {
    qunsetenv("XDG_DATA_HOME");
    qunsetenv("XDG_DATA_DIRS");
  }
  std::string entry(const std::string& id, const std::string& lines) {
    return folder.write("applications/" + id + ".desktop", "[Desktop Entry]\nType=Application\n" + lines);
  }
  TemporaryFolder folder;
};

}  // namespace

TEST(QtChildProcesses, TalksWithAProgram) {
  QtChildProcesses processes;
  qputenv("PERL5OPT", "-Mforeign");
  Program program(processes, "/bin/sh",
      {"-c", "read line; printf \"$0 $line$PERL5OPT\"; read line; test \"$HOME\" && printf \" $line\"",
          "é a"});
  qunsetenv("PERL5OPT");
  program.child->write("one\n");
  EXPECT_EQ(program.output, "");
  processes.allowStarting();
  ASSERT_TRUE(waitUntil([&] { return program.output == "é a one"; })) << "and nothing of our environment";
  program.child->write("two\nthree\n");
  EXPECT_TRUE(waitUntil([&] { return program.outputEnded && program.exits == 1; }));
  EXPECT_EQ(program.output, "é a one two");
  EXPECT_TRUE(program.failures.empty());
  program.child->write("nobody reads this\n");
}

TEST(QtChildProcesses, SaysWhatCannotBeStarted) {
  QtChildProcesses processes;
  processes.allowStarting();
  Program program(processes, "/nonexistent/program");
  EXPECT_TRUE(program.failures.empty()) << "not from within the call";
  ASSERT_TRUE(waitUntil([&] { return !program.failures.empty(); }));
  EXPECT_NE(program.failures.front(), "");
  EXPECT_EQ(program.exits, 0);
}

TEST(QtChildProcesses, AProgramThatNobodyReadsWaitsAndEndsWithItsHandle) {
  QtChildProcesses processes;
  processes.allowStarting();
  Program program(processes, "/bin/sh", {"-c", "echo $$; exec yes"});
  program.reads = false;
  ASSERT_TRUE(waitUntil([&] { return !program.output.empty(); }));
  const pid_t process = std::stoi(program.output);
  const size_t received = program.output.size();
  // Once its pipe is full it sleeps.
  ASSERT_TRUE(waitUntil([&] {
    const std::string state = contentsOf("/proc/" + std::to_string(process) + "/wchan");
    return state.find("pipe") != std::string::npos || state == "0";
  }));
  EXPECT_EQ(program.output.size(), received);
  program.child.reset();
  EXPECT_TRUE(waitUntil([&] { return ::kill(process, 0) != 0; }));
  EXPECT_EQ(program.exits, 0) << "whoever lets go of it is not told";
}

TEST(QtImageDecoder, ReadsPicturesAndNothingElse) {
  QImage red(20, 10, QImage::Format_ARGB32);
  red.fill(QColor(255, 0, 0));
  QImage sheer(4, 4, QImage::Format_ARGB32);
  sheer.fill(QColor(255, 0, 0, 128));
  const QByteArray png = encoded(red, "PNG"), progressive = encoded(red, "JPG", true);
  const QByteArray lastScan = progressive.mid(progressive.lastIndexOf("\xff\xda")).chopped(2);
  const auto withScans = [&](int count) {
    return progressive.chopped(2) + lastScan.repeated(count) + progressive.right(2);
  };
  const struct {
    const char* what;
    QByteArray bytes;
    int width, height;
    uint32_t pixel;
  } cases[] = {
      {"PNG", png, 20, 10, 0xffff0000},
      {"JPEG", encoded(red, "JPG"), 20, 10, 0xfffe0000},
      {"JPEG with many scans", withScans(50), 20, 10, 0xfffe0000},
      {"JPEG with too many", withScans(100), 0, 0, 0},
      {"BMP", encoded(red, "BMP"), 20, 10, 0xffff0000},
      {"sheer", encoded(sheer, "PNG"), 4, 4, 0x80800000},
      {"large", encoded(red.scaled(1448, 724), "PNG"), 400, 200, 0xffff0000},
      {"too large", encoded(red.scaled(1450, 725), "PNG"), 0, 0, 0},
      {"long", encoded(red.scaled(3000, 1), "PNG"), 400, 1, 0xffff0000},
      {"nothing", {}, 0, 0, 0},
      {"text", "hello", 0, 0, 0},
      {"a beginning", png.left(30), 0, 0, 0},
  };
  const QtImageDecoder decoder;
  for (const auto& c : cases) {
    const std::optional<Image> image = decoder.decode(view(c.bytes));
    ASSERT_EQ(image.has_value(), c.width > 0) << c.what;
    if (!image) continue;
    EXPECT_EQ(image->width, c.width) << c.what;
    EXPECT_EQ(image->height, c.height) << c.what;
    ASSERT_EQ(image->pixels->size(), static_cast<size_t>(c.width * c.height)) << c.what;
    EXPECT_EQ(image->pixels->front(), c.pixel) << c.what;
  }
}

TEST(Covers, AreReadFromFilesOfThisMachineAndFromTheirAddress) {
  const TemporaryFolder folder;
  const std::string file = folder.write("a cover", "bytes"), huge = folder.write("huge", "");
  std::filesystem::resize_file(huge, largestCover + 1);
  ::mkfifo((folder.path() + "/pipe").c_str(), 0600);
  const std::string there = folder.path() + "/a%20cover";
  const struct {
    std::string address, bytes;
  } cases[] = {
      {"file://" + there, "bytes"},
      {"FILE://LocalHost" + there, "bytes"},
      {"data:image/png;base64,aGk=", "hi"},
      {"data:,a%20b", "a b"},
      {"file://elsewhere.invalid" + there, ""},
      {"file://" + huge, ""},
      {"file://" + folder.path() + "/pipe", ""},
      {"file:///dev/zero", ""},
      {"file://" + folder.path(), ""},
      {"file:", ""},
      {"data:image/png", ""},
      {"ftp://localhost/x", ""},
      {"no address", ""},
      {"", ""},
  };
  for (const auto& c : cases) EXPECT_EQ(coverBytes(c.address, false), c.bytes) << c.address;
}

TEST(Covers, ComeFromPublicAddresses) {
  const auto isPublic = [](const std::string& text) {
    sockaddr_in old = {.sin_family = AF_INET};
    sockaddr_in6 current = {.sin6_family = AF_INET6};
    if (::inet_pton(AF_INET, text.c_str(), &old.sin_addr) == 1)
      return isPublicAddress(reinterpret_cast<const sockaddr&>(old));
    EXPECT_EQ(::inet_pton(AF_INET6, text.c_str(), &current.sin6_addr), 1) << text;
    return isPublicAddress(reinterpret_cast<const sockaddr&>(current));
  };
  for (const char* text : {"1.1.1.1", "9.255.255.255", "100.63.0.1", "172.32.0.1", "192.167.1.1",
           "223.255.255.1", "2606:4700::1", "2a00::1", "64:ff9b::101:101"}) {
    EXPECT_TRUE(isPublic(text)) << text;
  }
  for (const char* text :
      {"0.0.0.0", "10.1.2.3", "127.0.0.1", "100.64.0.1", "169.254.1.1", "172.16.0.1", "172.31.255.255",
          "192.168.1.1", "224.0.0.1", "255.255.255.255", "::", "::1", "fe80::1", "fd00::1", "ff02::1",
          "::127.0.0.1", "::ffff:8.8.8.8", "2002:7f00::1", "2001::1", "64:ff9b::7f00:1", "64:ff9b:1::1"}) {
    EXPECT_FALSE(isPublic(text)) << text;
  }
}

TEST(DesktopApplications, KnowsTheApplicationOfAProcess) {
  DataFolder data;
  const std::string sleeper = data.entry("org.example.Sleeper",
      "Exec=/usr/bin/sleep --x %U\nIcon=sleeper\n"
      "[Desktop Action x]\nExec=nothing\n");
  const std::string named = data.entry("named", "Exec=other\n");
  QImage icon(128, 128, QImage::Format_RGB32);
  icon.fill(Qt::blue);
  const QByteArray bytes = encoded(icon, "PNG");
  data.folder.write("system/icons/hicolor/128x128/apps/sleeper.png", bytes.toStdString());
  const QtImageDecoder images;
  X11WindowActivation activation(TestDesktop::shared().connection());
  DesktopApplications applications(activation, images);

  auto child = std::make_unique<Child>("sleep", QStringList{"1000"});
  const auto process = static_cast<int32_t>(child->id());
  const struct {
    const char *what, *name;
    std::string bundle;
    bool icon;
  } cases[] = {{"by its program", "", sleeper, true}, {"by a name that nobody has", "nobody", sleeper, true},
      {"by a name that is a path", "../applications/named", sleeper, true},
      {"by its name", "named", named, false}};
  for (const auto& c : cases) {
    const auto application = applications.runningApplication(process, c.name);
    ASSERT_TRUE(application) << c.what;
    EXPECT_EQ(application->bundle, c.bundle) << c.what;
    ASSERT_EQ(application->icon.has_value(), c.icon) << c.what;
    EXPECT_EQ(c.icon ? application->icon->pixels->front() : 0xff0000ff, 0xff0000ff) << c.what;
  }
  EXPECT_EQ(applications.runningApplication(static_cast<int32_t>(::getpid()), ""), Application{})
      << "a program without a desktop entry";
  child.reset();
  EXPECT_FALSE(applications.runningApplication(process, "named"));
}

TEST(DesktopApplications, BringsAnApplicationForwardOrStartsIt) {
  DataFolder data;
  const std::string started = data.folder.path() + "/is started";
  const std::string starts = "Exec=touch \"" + started + "\" %U\n";
  TestDesktop& desktop = TestDesktop::shared();
  const QtImageDecoder images;
  X11WindowActivation activation(desktop.connection());
  DesktopApplications applications(activation, images);

  const auto window = desktop.startWindow("Player", QRect(300, 300, 200, 100));
  const xcb_window_t player = desktop.awaitWindow("Player");
  ASSERT_TRUE(waitUntil([&] { return desktop.focusedWindow() == player; })) << "as windows that are new are";
  X11Connection& x = desktop.connection();
  xcb_set_input_focus(x, XCB_INPUT_FOCUS_POINTER_ROOT, x.root(), XCB_CURRENT_TIME);
  xcb_flush(x);
  ASSERT_TRUE(waitUntil([&] { return desktop.focusedWindow() != player; }));
  EXPECT_TRUE(applications.bringForward(data.entry("player", starts + "StartupWMClass=Test-Platform\n")));
  EXPECT_TRUE(waitUntil([&] { return desktop.focusedWindow() == player; }));
  const auto owner = x.property(x.requestProperty(player, "_NET_WM_PID"));
  ASSERT_TRUE(owner && !owner->empty());
  const auto process = static_cast<int32_t>(owner->front());
  const auto frame = owned(xcb_query_tree_reply(x, xcb_query_tree(x, player), nullptr))->parent;
  const xcb_window_t child = xcb_generate_id(x);
  xcb_create_window(x, 0, child, player, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, 0, 0, nullptr);
  const struct {
    const char* what;
    uint32_t told;
    std::vector<int32_t> processes;
    std::optional<uint32_t> window;
  } cases[] = {{"its own", player, {process}, player}, {"one within it", child, {process}, player},
      {"another's", player, {1}, {}}, {"its frame", frame, {1, process}, player},
      {"none", 0, {1, process}, player}, {"one that is gone", 0xfffffff, {1}, {}}};
  for (const auto& c : cases) EXPECT_EQ(activation.windowOf(c.told, c.processes), c.window) << c.what;

  for (const auto& entry : {std::string("/nonexistent.desktop"), data.entry("broken", "Exec=\n")}) {
    EXPECT_FALSE(applications.bringForward(entry));
    applications.start(entry);
  }
  EXPECT_FALSE(applications.bringForward(data.entry("windowless", starts)));
  EXPECT_FALSE(std::filesystem::exists(started));
  applications.start(data.entry("windowless", starts));
  EXPECT_TRUE(waitUntil([&] { return std::filesystem::exists(started); }));
}
