#include "cli/HookCLI.h"

#include <limits.h>
#include <poll.h>

#include <cerrno>
#include <span>

#include "cli/Caller.h"
#include "cli/HookEvent.h"
#include "json/JsonString.h"

namespace tarnwick::HookCLI {
namespace {

/// The next bytes of a file, pipe or socket; a failure counts as its end.
std::string_view readChunk(int input, std::span<char> buffer) {
  for (;;) {
    const ssize_t count = ::read(input, buffer.data(), buffer.size());
    if (count >= 0) return {buffer.data(), static_cast<size_t>(count)};
    if (errno == EAGAIN) {
      pollfd ready{input, POLLIN, 0};
      ::poll(&ready, 1, -1);
    } else if (errno != EINTR) {
      return {};
    }
  }
}

/// What Claude Code takes for a decision of the user's; empty where there is none.
std::string decision(const PermissionAnswer& answer) {
  using enum PermissionAnswer::Behavior;
  if (answer.behavior == none) return "";
  const std::string behavior =
      answer.behavior == allow ? R"("allow")" : R"("deny","message":)" + jsonString(answer.message);
  return R"({"hookSpecificOutput":{"hookEventName":"PermissionRequest","decision":{"behavior":)" + behavior +
         "}}}\n";
}

}  // namespace

void run(NotificationPoster& poster, PermissionAsker* asker, int input, int output) {
  char buffer[16384];
  auto event = readHookEvent(
      [&] { return readChunk(input, buffer); }, asker ? HookEventForm::withInput : HookEventForm::whole);
  if (!event) return;
  if (event->contains("session_id")) addCaller(*event);
  if (event->contains(toolInputKey)) {
    if (const auto answer = asker->ask(*event, output)) {
      const std::string text = decision(*answer);
      // It fits into any pipe, and whoever reads it may have gone.
      (void)!::write(output, text.data(), text.size());
      return;
    }
    event->erase(toolInputKey);
  }
  poster.post(notificationName, *event);
}

void demo(NotificationPoster& poster, const std::function<void(unsigned seconds)>& sleep) {
  struct Step {
    StringMap added;
    unsigned pause;
  };
  const Step steps[] = {
      {{{"hook_event_name", "UserPromptSubmit"}, {"prompt", "Ajoute des tests"}}, 2},
      {{{"hook_event_name", "PreToolUse"}, {"tool_name", "Bash"}, {"tool_detail", "npm test"}}, 3},
      {{{"hook_event_name", "Notification"}, {"notification_type", "permission_prompt"},
           {"message", "Claude needs your permission to use Bash"}},
          4},
      {{{"hook_event_name", "PostToolUse"}, {"tool_name", "Bash"}}, 1},
      {{{"hook_event_name", "PreToolUse"}, {"tool_name", "Edit"}, {"tool_detail", "src/app.test.ts"}}, 3},
      {{{"hook_event_name", "Stop"}}, 0},
  };
  char folder[PATH_MAX];
  const StringMap base{{"session_id", "demo"}, {"cwd", ::getcwd(folder, sizeof folder) ? folder : ""}};
  for (const Step& step : steps) {
    StringMap event = step.added;
    event.insert(base.begin(), base.end());
    poster.post(notificationName, event);
    sleep(step.pause);
  }
}

}  // namespace tarnwick::HookCLI
