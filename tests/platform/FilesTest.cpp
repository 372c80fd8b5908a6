#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "linux/files/FileList.h"
#include "linux/files/JsonUserDefaults.h"
#include "linux/files/XdgFolders.h"
#include "support/MemoryDesktop.h"

using namespace tarnwick;
using testing::ElementsAre;
using testing::HasSubstr;
using Strings = std::vector<std::string>;

namespace {

class JsonUserDefaultsTest : public testing::Test {
 protected:
  std::string file() const { return folders.configuration() + "/Tarnwick/defaults.json"; }
  void write(const std::string& text) const {
    std::filesystem::create_directories(folders.configuration() + "/Tarnwick");
    std::ofstream(file()) << text;
  }

  MemoryFolders folders;
};

}  // namespace

TEST_F(JsonUserDefaultsTest, KeepsValuesForTheNextStart) {
  const Strings paths{"/home/é", "", "with \"quotes\" and \\", "line\nbreak", "/tmp/caf\xe9",
      "\xff\x80/\xed\xb3\xa9/\xf0\x9f"};
  {
    JsonUserDefaults defaults(folders);
    EXPECT_EQ(defaults.boolean("on"), std::nullopt);
    defaults.set("on", true);
    defaults.set("off", true);
    defaults.set("off", false);
    defaults.set("paths", paths);
    defaults.set("none", Strings{});
    EXPECT_EQ(std::filesystem::status(file()).permissions(), std::filesystem::perms(0600));
  }
  const JsonUserDefaults defaults(folders);
  EXPECT_EQ(defaults.boolean("on"), true);
  EXPECT_EQ(defaults.boolean("off"), false);
  EXPECT_EQ(defaults.strings("paths"), paths);
  EXPECT_EQ(defaults.strings("none"), Strings{});
}

TEST_F(JsonUserDefaultsTest, ReadsOnlyWhatHasTheAskedType) {
  write(R"({"number": 1, "text": "true", "mixed": ["a", 1], "deep": [["a"]], "yes": true, "list": ["a"]})");
  const JsonUserDefaults defaults(folders);
  for (const char* key : {"number", "text", "mixed", "deep", "list", "missing"}) {
    EXPECT_EQ(defaults.boolean(key), std::nullopt) << key;
  }
  for (const char* key : {"number", "text", "mixed", "deep", "yes", "missing"}) {
    EXPECT_EQ(defaults.strings(key), std::nullopt) << key;
  }
}

TEST_F(JsonUserDefaultsTest, LeavesForeignValuesAsTheyWereWritten) {
  const Strings foreign{R"("huge": 1e400)", R"("id": 12345678901234567890123)", R"("price": 1.10)",
      R"("halves \udc00": "\udc00 \ud800é")", R"("null": null)"};
  std::string text = "\xEF\xBB\xBF{";
  for (const std::string& member : foreign) text += (text.size() > 4 ? ",\n" : "\n") + member;
  write(text + "\r\n\t}");
  JsonUserDefaults(folders).set("on", true);
  JsonUserDefaults(folders).set("on", false);
  for (const std::string& member : foreign) EXPECT_THAT(contentsOf(file()), HasSubstr(member));
}

TEST_F(JsonUserDefaultsTest, LeavesWhatAnotherProgramWroteMeanwhile) {
  JsonUserDefaults defaults(folders);
  defaults.set("on", true);
  write(R"({"on": true, "theirs": 1})");
  defaults.set("off", false);
  EXPECT_THAT(contentsOf(file()), HasSubstr(R"("theirs": 1)"));
}

TEST_F(JsonUserDefaultsTest, KeepsADamagedFileAside) {
  for (const char* damaged : {"{\"on\": tru", "[true]", "\xff", "", "{\"a\": \"\xe9\"}"}) {
    MemoryFolders own;
    const std::string folder = own.configuration() + "/Tarnwick";
    std::filesystem::create_directories(folder);
    std::ofstream(folder + "/defaults.json") << damaged;
    std::ofstream(folder + "/defaults.json.damaged") << "an older one";

    JsonUserDefaults defaults(own);
    EXPECT_EQ(defaults.boolean("on"), std::nullopt);
    EXPECT_EQ(contentsOf(folder + "/defaults.json"), damaged) << "reading changes nothing";
    defaults.set("on", true);
    EXPECT_EQ(contentsOf(folder + "/defaults.json.damaged-2"), damaged);
    EXPECT_EQ(contentsOf(folder + "/defaults.json.damaged"), "an older one");
    EXPECT_EQ(JsonUserDefaults(own).boolean("on"), true);
  }
}

TEST(XdgFolders, FollowTheEnvironmentWhereItIsValid) {
  const XdgFolders folders;
  const std::string before = folders.home();
  setenv("HOME", "/home/me/", 1);
  setenv("XDG_DATA_HOME", "/data//", 1);
  setenv("XDG_CACHE_HOME", "relative", 1);
  unsetenv("XDG_CONFIG_HOME");
  EXPECT_EQ(folders.home(), "/home/me");
  EXPECT_EQ(folders.data(), "/data");
  EXPECT_EQ(folders.caches(), "/home/me/.cache");
  EXPECT_EQ(folders.configuration(), "/home/me/.config");
  setenv("HOME", before.c_str(), 1);
  unsetenv("XDG_DATA_HOME");
  unsetenv("XDG_CACHE_HOME");
}

TEST(FileList, TakesTheFilesOfThisMachine) {
  char host[256];
  gethostname(host, sizeof host);
  const std::string text =
      "# a comment\r\nfile:///plain\r\nfile:///with%20space%2F\r\nfile:///\r\nhttp://example.org/file\n"
      "file:/short\r\nfile://localhost/local\r\nfile://elsewhere.invalid/far\r\nfile://" +
      std::string(host) + "/named\r\nfile:///latin1%E9\r\nfile:///nul%00byte\r\nfile:relative";
  EXPECT_THAT(filesOfUriList(text),
      ElementsAre("/plain", "/with space", "/", "/short", "/local", "/named", "/latin1\xe9"));
  EXPECT_THAT(filesOfUriList(""), ElementsAre());
}
