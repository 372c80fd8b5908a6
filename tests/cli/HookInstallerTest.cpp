#include "cli/HookInstaller.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "base/AtomicFile.h"
#include "support/TemporaryFolder.h"

using namespace tarnwick;
namespace fs = std::filesystem;

namespace {

JsonValue json(const std::string& text) {
  std::string error;
  const auto value = parseJson(text, error);
  EXPECT_TRUE(value) << error << "\n" << text;
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

constexpr auto ourEntry = R"({"command":"'/opt/Tarnwick/bin/Tarnwick' --hook","timeout":5,"type":"command"})";

std::string ourGroup(bool isTool) {
  return std::string(R"({"hooks":[)") + ourEntry + (isTool ? R"(],"matcher":"*"})" : "]}");
}

/// Hooks with our group at the end of every event; `stop` and `tool` stand before it in Stop and PreToolUse.
std::string installedHooks(const std::string& stop = "", const std::string& tool = "") {
  return R"({"SessionStart":[)" + ourGroup(false) + R"(],"UserPromptSubmit":[)" + ourGroup(false) +
         R"(],"PreToolUse":[)" + tool + ourGroup(true) + R"(],"PostToolUse":[)" + ourGroup(true) +
         R"(],"Notification":[)" + ourGroup(false) + R"(],"Stop":[)" + stop + ourGroup(false) +
         R"(],"SessionEnd":[)" + ourGroup(false) + "]}";
}

TEST_F(HookInstallerTest, CreatesTheFileAndItsFolder) {
  fs::remove_all(home_.path());
  EXPECT_FALSE(installer_.isInstalled());
  ASSERT_TRUE(uninstall());
  EXPECT_EQ(contentsOf(path_), "{}\n");
  fs::remove_all(home_.path());
  ASSERT_TRUE(install());
  EXPECT_EQ(settings(), json(R"({"hooks":)" + installedHooks() + "}"));
  EXPECT_TRUE(contentsOf(path_).find("'/opt/Tarnwick/bin/Tarnwick' --hook") != std::string::npos);
  EXPECT_EQ(printed_,
            "Tarnwick hooks installed in " + path_ + "\nCommand: '/opt/Tarnwick/bin/Tarnwick' --hook\n");
  EXPECT_EQ(complained_, "");
  EXPECT_TRUE(installer_.isInstalled());
  EXPECT_FALSE(fs::exists(backup_));

  ASSERT_TRUE(uninstall());
  EXPECT_EQ(contentsOf(path_), "{}\n");
  EXPECT_EQ(printed_, "Tarnwick hooks removed from " + path_ + "\n");
  EXPECT_FALSE(installer_.isInstalled());
}

TEST_F(HookInstallerTest, KeepsEverythingElse) {
  const std::string usersStop = R"({"hooks":[{"type":"command","command":"notify-send done"}],"extra":1.10})";
  const std::string others = R"("model":"opus","limit":1e400,"id":12345678901234567890123,"path":"/a/b")";
  const std::string before = R"({"hooks":{"Stop":[)" + usersStop + R"(],"PreCompact":[7]},)" + others + "}";
  writeSettings(before);
  ASSERT_TRUE(install());
  const std::string hooks = installedHooks(usersStop + ",");
  EXPECT_EQ(settings(), json(R"({"hooks":)" + hooks.substr(0, hooks.size() - 1) + R"(,"PreCompact":[7]},)" +
                             others + "}"));
  EXPECT_EQ(contentsOf(backup_), before);

  const std::string installed = contentsOf(path_);
  ASSERT_TRUE(install());
  EXPECT_EQ(contentsOf(path_), installed);
  EXPECT_EQ(contentsOf(backup_), installed);
  EXPECT_EQ(contentsOf(backup_ + "-first"), before);

  ASSERT_TRUE(uninstall());
  EXPECT_EQ(settings(), json(before));
}

TEST_F(HookInstallerTest, RemovesOnlyItsOwnEntries) {
  const std::string ours = ourEntry;
  const std::string user = R"({"type":"command","command":"mine"})";
  const struct {
    std::string before, after;
  } changed[] = {
      {"{}", "{}"},
      {R"({"Stop":[{"hooks":[)" + ours + "," + user + R"(],"matcher":"x"}]})",
       R"({"Stop":[{"hooks":[)" + user + R"(],"matcher":"x"}]})"},
      {R"({"Stop":[{"hooks":[)" + ours + "]},{\"hooks\":[" + user + "]}]}",
       R"({"Stop":[{"hooks":[)" + user + "]}]}"},
      {R"({"Stop":[{"hooks":[)" + ours + "," + ours + "]}]}", "{}"},
      // Groups and events that were empty to begin with go as well.
      {R"({"Stop":[],"Other":[{"hooks":[],"matcher":"x"}]})", "{}"},
      {R"({"Stop":[{"hooks":[{"command":"Tarnwick --hook"}]}]})", "{}"},
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
      R"({"Stop":[{"hooks":[{"command":"tarnwick --hook"},{"command":"other --hook"}]}]})",
      R"({"Stop":[{"hooks":[{"command":"Tarnwick --hook "}]}]})",
  };
  for (const std::string& hooks : kept) EXPECT_EQ(remaining(hooks), *json(hooks).as<JsonObject>()) << hooks;
}

TEST_F(HookInstallerTest, ReplacesHooksOfAnotherShape) {
  for (const char* hooks : {"7", "null", R"(["x"])", R"("x")"}) {
    const std::string before = std::string(R"({"a":1,"hooks":)") + hooks + "}";
    writeSettings(before);
    ASSERT_TRUE(install());
    EXPECT_EQ(settings(), json(R"({"a":1,"hooks":)" + installedHooks() + "}"));
    EXPECT_EQ(contentsOf(backup_), before);
    writeSettings(before);
    ASSERT_TRUE(uninstall());
    EXPECT_EQ(settings(), json(R"({"a":1})"));
  }
  writeSettings("\xEF\xBB\xBF{}");
  ASSERT_TRUE(uninstall());
  EXPECT_EQ(contentsOf(path_), "\xEF\xBB\xBF{}\n");
  // An event of another shape is replaced too, and an unknown event kept.
  writeSettings(R"({"hooks":{"Stop":{"x":1},"PreToolUse":[1],"Other":{"x":1}}})");
  ASSERT_TRUE(install());
  const std::string hooks = installedHooks();
  EXPECT_EQ(settings(), json(R"({"hooks":)" + hooks.substr(0, hooks.size() - 1) + R"(,"Other":{"x":1}}})"));
}

TEST_F(HookInstallerTest, LeavesAFileThatItDoesNotUnderstandAsItIs) {
  struct Case {
    const char *text, *complaint;
  };
  const Case cases[] = {
      {"[]", "settings.json is not a JSON object\n"},
      {"7", "settings.json is not a JSON object\n"},
      {"", "Could not read settings.json: incomplete JSON (at byte 0)\n"},
      {"{\"a\":1,}", "Could not read settings.json: syntax error (at byte 7)\n"},
      {"{\"a\":\"caf\xE9\"}", "Could not read settings.json: invalid UTF-8\n"},
  };
  for (const Case& one : cases) {
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
  fs::create_directories(path_);
  EXPECT_FALSE(install());
  EXPECT_EQ(complained_, "Could not read settings.json: Is a directory\n");

  fs::remove_all(home_.path() + "/.claude");
  home_.write(".claude", "a file");
  EXPECT_FALSE(install());
  EXPECT_EQ(complained_, "Could not write settings.json: Not a directory\n");

  fs::remove(home_.path() + "/.claude");
  for (const auto& [path, problem] :
       {std::pair("/caf\xE9/Tarnwick", "not valid UTF-8\n"), {"Tarnwick", "not known\n"}}) {
    testing::internal::CaptureStderr();
    EXPECT_FALSE(HookInstaller(home_.path(), path).install());
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              std::string("Could not write settings.json: the path of the program is ") + problem);
  }
}

TEST_F(HookInstallerTest, KeepsLinksAndPermissions) {
  const std::string real = home_.path() + "/dotfiles/claude.json";
  fs::create_directories(home_.path() + "/dotfiles");
  fs::create_directories(home_.path() + "/.claude");
  ASSERT_FALSE(writeFileAtomically(real, R"({"a":1})"));
  ASSERT_EQ(::chmod(real.c_str(), 0600), 0);
  ASSERT_EQ(::symlink("../dotfiles/claude.json", path_.c_str()), 0);
  ASSERT_TRUE(install());
  EXPECT_EQ(fs::read_symlink(path_), "../dotfiles/claude.json");
  EXPECT_EQ(json(contentsOf(real)), json(R"({"a":1,"hooks":)" + installedHooks() + "}"));
  EXPECT_EQ(fs::status(real).permissions(), fs::perms(0600));
  EXPECT_EQ(fs::status(backup_).permissions(), fs::perms(0600));
}

TEST_F(HookInstallerTest, IsInstalledLooksAtTheTextOnly) {
  const struct {
    const char* text;
    bool isInstalled;
  } cases[] = {{"Tarnwick --hook", true},  {"--hook, not JSON, Tarnwick", true},
               {"tarnwick --hook", false}, {"Tarnwick", false},
               {"--hook", false},          {"Tarnwick --hook caf\xE9", false}};
  for (const auto& one : cases) {
    writeSettings(one.text);
    EXPECT_EQ(installer_.isInstalled(), one.isInstalled) << one.text;
  }
}

TEST_F(HookInstallerTest, QuotesThePathForTheShell) {
  const auto command = [](const char* path) { return HookInstaller("/home", path).command(); };
  EXPECT_EQ(command("/a b/Tarnwick"), "'/a b/Tarnwick' --hook");
  EXPECT_EQ(command("/it's $HOME/Tarnwick"), R"('/it'\''s $HOME/Tarnwick' --hook)");
}

}  // namespace
