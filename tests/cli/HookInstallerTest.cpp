#include "cli/HookInstaller.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "base/AtomicFile.h"
#include "support/TemporaryFolder.h"

using namespace tarnwick;
namespace fs = std::filesystem;

namespace {

JsonValue json(const std::string& text) {
  const auto value = parseJson(text);
  EXPECT_TRUE(value) << text;
  return value.value_or(JsonValue());
}

/// A home folder with a settings file, and what an installer prints while it changes it.
class HookInstallerTest : public testing::Test {
 protected:
  TemporaryFolder home_;
  const std::string path_ = home_.path() + "/.claude/settings.json";
  const std::string backup_ = path_ + ".bak-tarnwick";
  const HookInstaller installer_{home_.path(), "/opt/Tarnwick/bin/Tarnwick"};
  std::string printed_, complained_;

  void writeSettings(const std::string& text) {
    fs::create_directories(home_.path() + "/.claude");
    ASSERT_FALSE(writeFileAtomically(path_, text));
  }
  bool run(bool (HookInstaller::*operation)() const) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const bool success = (installer_.*operation)();
    printed_ = testing::internal::GetCapturedStdout();
    complained_ = testing::internal::GetCapturedStderr();
    return success;
  }
  bool install() { return run(&HookInstaller::install); }
  bool uninstall() { return run(&HookInstaller::uninstall); }
  JsonValue settings() { return json(contentsOf(path_)); }
};

const std::string ours = R"({"command":"'/opt/Tarnwick/bin/Tarnwick' --hook","timeout":5,"type":"command"})";
/// It waits for the user.
const std::string asking =
    R"({"command":"'/opt/Tarnwick/bin/Tarnwick' --hook","timeout":600,"type":"command"})";

/// Hooks with our group at the end of every event; `stop` stands before it in Stop, `others` beside the
/// events.
std::string installedHooks(const std::string& stop = "", const std::string& others = "") {
  const std::string group = R"({"hooks":[)" + ours + "]}",
                    tool = R"({"hooks":[)" + ours + R"(],"matcher":"*"})",
                    permission = R"({"hooks":[)" + asking + R"(],"matcher":"*"})";
  return R"({"SessionStart":[)" + group + R"(],"UserPromptSubmit":[)" + group + R"(],"PreToolUse":[)" + tool +
         R"(],"PermissionRequest":[)" + permission + R"(],"PostToolUse":[)" + tool + R"(],"Notification":[)" +
         group + R"(],"Stop":[)" + stop + group + R"(],"StopFailure":[)" + group + R"(],"SessionEnd":[)" +
         group + "]" + others + "}";
}

TEST_F(HookInstallerTest, CreatesTheFileAndItsFolder) {
  fs::remove_all(home_.path());
  EXPECT_FALSE(installer_.isInstalled());
  ASSERT_TRUE(install());
  EXPECT_EQ(settings(), json(R"({"hooks":)" + installedHooks() + "}"));
  EXPECT_EQ(
      printed_, "Tarnwick hooks installed in " + path_ + "\nCommand: '/opt/Tarnwick/bin/Tarnwick' --hook\n");
  EXPECT_EQ(complained_, "");
  EXPECT_TRUE(installer_.isInstalled());
  EXPECT_FALSE(fs::exists(backup_));

  ASSERT_TRUE(uninstall());
  EXPECT_EQ(contentsOf(path_), "{}\n");
  EXPECT_EQ(printed_, "Tarnwick hooks removed from " + path_ + "\n");
  EXPECT_FALSE(installer_.isInstalled());
}

TEST_F(HookInstallerTest, KeepsEverythingElse) {
  const std::string stop = R"({"hooks":[{"type":"command","command":"notify-send done"}],"extra":1.10})";
  const std::string others = R"("limit":1e400,"id":12345678901234567890123,"half":"\ud83d")";
  const std::string before =
      "\xEF\xBB\xBF{" + others + R"(,"hooks":{"Stop":[)" + stop + R"(],"PreCompact":[7]}})";
  writeSettings(before);
  ASSERT_TRUE(install());
  EXPECT_EQ(settings(),
      json("{" + others + R"(,"hooks":)" + installedHooks(stop + ",", R"(,"PreCompact":[7])") + "}"));
  EXPECT_EQ(contentsOf(backup_), before);

  const std::string installed = contentsOf(path_);
  EXPECT_TRUE(installed.starts_with("\xEF\xBB\xBF{\n"));
  ASSERT_TRUE(install());
  EXPECT_EQ(contentsOf(path_), installed);
  EXPECT_EQ(contentsOf(backup_), installed);
  EXPECT_EQ(contentsOf(backup_ + "-first"), before);

  ASSERT_TRUE(uninstall());
  EXPECT_EQ(settings(), json(before));
}

TEST_F(HookInstallerTest, RemovesOnlyItsOwnEntries) {
  const std::string user = R"({"type":"command","command":"mine"})";
  const struct {
    std::string before, after;
  } changed[] = {
      {R"({"Stop":[{"hooks":[)" + ours + "," + user + R"(],"matcher":"x"}]})",
          R"({"Stop":[{"hooks":[)" + user + R"(],"matcher":"x"}]})"},
      {R"({"Stop":[{"hooks":[)" + ours + "," + ours + "]},{\"hooks\":[" + user + "]}]}",
          R"({"Stop":[{"hooks":[)" + user + "]}]}"},
      // Groups and events that were empty to begin with go as well.
      {R"({"Stop":[],"Other":[{"hooks":[],"matcher":"x"}]})", "{}"},
      {R"({"Stop":[{"hooks":[{"command":"/x/Tarnwick.app/y --hook","more":1}]}]})", "{}"},
  };
  const auto remaining = [](const std::string& hooks) {
    return HookInstaller::removingOurs(*json(hooks).as<JsonObject>());
  };
  for (const auto& [before, after] : changed) {
    EXPECT_EQ(remaining(before), *json(after).as<JsonObject>()) << before;
  }
  // Shapes that are not understood stay, and so do the commands of others.
  const std::string kept[] = {
      R"({"Stop":[{"hooks":[)" + ours + "]},7]}",
      R"({"Stop":{"hooks":[)" + ours + "]}}",
      R"({"a":null,"b":[1],"c":[{"matcher":"x"}],"d":[{"hooks":{}}],"e":"Tarnwick --hook"})",
      R"({"Stop":[{"hooks":["Tarnwick --hook",{"command":7},{"args":"Tarnwick --hook"}]}]})",
      R"({"Stop":[{"hooks":[{"command":"tarnwick --hook"},{"command":"Tarnwick --hook "}]}]})",
  };
  for (const std::string& hooks : kept) EXPECT_EQ(remaining(hooks), *json(hooks).as<JsonObject>()) << hooks;
}

TEST_F(HookInstallerTest, ReplacesHooksOfAnotherShape) {
  for (const char* hooks : {"7", R"(["x"])"}) {
    const std::string before = std::string(R"({"a":1,"hooks":)") + hooks + "}";
    writeSettings(before);
    ASSERT_TRUE(install());
    EXPECT_EQ(settings(), json(R"({"a":1,"hooks":)" + installedHooks() + "}"));
    writeSettings(before);
    ASSERT_TRUE(uninstall());
    EXPECT_EQ(settings(), json(R"({"a":1})"));
  }
  // An event of another shape is replaced too, and an unknown event kept.
  writeSettings(R"({"hooks":{"Stop":{"x":1},"PreToolUse":[1],"Other":{"x":1}}})");
  ASSERT_TRUE(install());
  EXPECT_EQ(settings(), json(R"({"hooks":)" + installedHooks("", R"(,"Other":{"x":1})") + "}"));
}

TEST_F(HookInstallerTest, LeavesAFileThatItDoesNotUnderstandAsItIs) {
  const struct {
    const char *text, *complaint;
  } cases[] = {
      {"[]", "settings.json is not a JSON object\n"},
      {"{\"a\":1,}", "Could not read settings.json: syntax error (at byte 7)\n"},
  };
  for (const auto& one : cases) {
    for (const auto operation : {&HookInstaller::install, &HookInstaller::uninstall}) {
      writeSettings(one.text);
      EXPECT_FALSE(run(operation));
      EXPECT_EQ(contentsOf(path_), one.text);
      EXPECT_EQ(contentsOf(backup_), one.text);
      EXPECT_EQ(complained_, one.complaint);
      EXPECT_EQ(printed_, "");
    }
  }
}

TEST_F(HookInstallerTest, TellsWhatCannotBeReadOrWritten) {
  writeSettings("{}");
  fs::create_directories(backup_ + "/in the way");
  EXPECT_FALSE(install());
  EXPECT_EQ(complained_, "Could not read settings.json: Is a directory\n");
  EXPECT_EQ(contentsOf(path_), "{}");

  fs::remove_all(home_.path() + "/.claude");
  home_.write(".claude", "a file");
  EXPECT_FALSE(install());
  EXPECT_EQ(complained_, "Could not write settings.json: Not a directory\n");

  for (const auto& [path, problem] :
      {std::pair("/caf\xE9/Tarnwick", "not valid UTF-8\n"), {"Tarnwick", "not known\n"}}) {
    testing::internal::CaptureStderr();
    EXPECT_FALSE(HookInstaller(home_.path(), path).install());
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
        std::string("Could not write settings.json: the path of the program is ") + problem);
  }
}

TEST_F(HookInstallerTest, IsInstalledLooksAtTheTextOnly) {
  const struct {
    const char* text;
    bool isInstalled;
  } cases[] = {{"--hook, not JSON, Tarnwick", true}, {"tarnwick --hook", false}, {"Tarnwick", false},
      {"Tarnwick --hook caf\xE9", false}};
  for (const auto& one : cases) {
    writeSettings(one.text);
    EXPECT_EQ(installer_.isInstalled(), one.isInstalled) << one.text;
  }
}

}  // namespace
