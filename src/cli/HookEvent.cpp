#include "cli/HookEvent.h"

#include <algorithm>
#include <array>
#include <span>

#include "base/Characters.h"
#include "json/JsonCopy.h"
#include "json/JsonReader.h"
#include "platform/PermissionRequests.h"

namespace tarnwick {
namespace {

/// The key of the first question in the map, whose place in the event is tool_input.questions[0].question.
constexpr const char* question = "question";
constexpr std::string_view toolInput = toolInputKey, transcriptPath = "transcript_path";
constexpr std::array<std::string_view, 11> eventKeys{"hook_event_name", "session_id", "cwd", "tool_name",
    "message", "notification_type", "prompt", "error", "last_assistant_message", transcriptPath, toolInput};
/// What only a relay has put there.
constexpr std::array<std::string_view, 3> relayKeys{machineKey, "tool_detail", question};
constexpr std::array<std::string_view, 6> detailKeys{
    "command", "file_path", "pattern", "description", "url", "query"};
constexpr const char* permissionRequest = "PermissionRequest";
constexpr size_t textLimit = 200;
constexpr size_t detailLimit = 120;
/// A path that is cut leads nowhere.
constexpr size_t pathLimit = 4096;
// Far above what any real text of that many characters takes.
constexpr size_t byteLimit = 16384;
// As much as can count, and the whole of the code point that the limit may cut.
constexpr size_t heldBytes = byteLimit + 4;

/// Keeps what goes into the map. Of a key given twice the last value counts.
class EventHandler : public JsonHandler {
 public:
  explicit EventHandler(HookEventForm form) : form_(form) {}

  /// Nothing when the text was another value than an object.
  std::optional<StringMap> takeMap() {
    if (!isObject_) return std::nullopt;
    for (auto& detail : details_) {
      if (!detail) continue;
      map_["tool_detail"] = std::move(*detail);
      break;
    }
    // Only of a failure the answer is the news; nobody else needs to hear it.
    if (eventName() != "StopFailure") {
      map_.erase("last_assistant_message");
    }
    if (!input_.text().empty() && eventName() == permissionRequest &&
        !isAnsweredInTerminal(valueOf(map_, "tool_name").value_or(""))) {
      map_[toolInputKey] = input_.text();
    }
    return std::move(map_);
  }

  void beginObject() override {
    isObject_ = isObject_ || depth_ == 0;
    beginContainer();
    if (depth_ == 2 && key_ == toolInput) {
      isToolInput_ = true;
      // Others' inputs are of no use.
      const auto name = eventName();
      isCopiedInput_ = form_ == HookEventForm::withInput && (!name || name == permissionRequest);
    }
    if (isCopiedInput_) input_.beginObject();
  }
  void beginArray() override {
    beginContainer();
    if (isCopiedInput_) input_.beginArray();
  }
  void endContainer() override {
    if (isCopiedInput_) input_.endContainer();
    --depth_;
    if (depth_ == 1) isToolInput_ = isCopiedInput_ = false;
  }
  void key(std::string_view part, bool isEnd) override {
    if (isCopiedInput_) input_.key(part, isEnd);
    collect(part);
    if (!isEnd) return;
    if (depth_ == 1) key_ = known(eventKeys, text_);
    if (depth_ == 1 && key_.empty() && form_ == HookEventForm::reduced) key_ = known(relayKeys, text_);
    if (depth_ == 2) detailKey_ = known(detailKeys, text_);
    if (depth_ == 2) areQuestions_ = isToolInput_ && text_ == "questions";
    if (depth_ == 4) isQuestion_ = areQuestions_ && text_ == question && !map_.contains(question);
    text_.clear();
  }
  void string(std::string_view part, bool isEnd) override {
    if (isCopiedInput_) input_.string(part, isEnd);
    if (isCopied() || isDetail() || isQuestion()) collect(part);
    if (!isEnd) return;
    forgetValue();
    if (isCopied()) {
      const size_t limit = key_ == transcriptPath ? pathLimit : textLimit;
      map_[std::string(key_)] = firstCharacters(text_, limit, byteLimit);
    }
    if (isDetail()) detail() = firstCharacters(text_, detailLimit, byteLimit);
    if (isQuestion()) map_[question] = firstCharacters(text_, textLimit, byteLimit);
    text_.clear();
  }
  void number(std::string_view part, bool isEnd) override {
    if (isCopiedInput_) input_.number(part, isEnd);
    forgetValue();
  }
  void boolean(bool value) override {
    if (isCopiedInput_) input_.boolean(value);
    forgetValue();
  }
  void null() override {
    if (isCopiedInput_) input_.null();
    forgetValue();
  }

 private:
  static std::string_view known(std::span<const std::string_view> keys, std::string_view text) {
    const auto found = std::ranges::find(keys, text);
    return found == keys.end() ? std::string_view() : *found;
  }

  bool isCopied() const { return depth_ == 1 && !key_.empty() && key_ != toolInput; }
  bool isDetail() const { return depth_ == 2 && isToolInput_ && !detailKey_.empty(); }
  bool isQuestion() const { return depth_ == 4 && isQuestion_; }
  std::optional<std::string>& detail() {
    return details_[static_cast<size_t>(std::ranges::find(detailKeys, detailKey_) - detailKeys.begin())];
  }

  std::optional<std::string> eventName() const { return valueOf(map_, "hook_event_name"); }

  void beginContainer() {
    forgetValue();
    isQuestion_ = false;
    ++depth_;
  }

  void collect(std::string_view part) { text_ += part.substr(0, heldBytes - text_.size()); }

  void forgetValue() {
    if (isCopied()) map_.erase(std::string(key_));
    if (depth_ == 1 && key_ == toolInput) {
      details_ = {};
      input_.clear();
      map_.erase(question);
    }
    if (isDetail()) detail().reset();
  }

  const HookEventForm form_;
  StringMap map_;
  std::array<std::optional<std::string>, detailKeys.size()> details_;
  size_t depth_ = 0;
  bool isObject_ = false;
  /// Whether the object at depth 2 is the tool's input.
  bool isToolInput_ = false;
  /// It, and whether what is being read is written down there.
  JsonCopy input_{longestToolInput};
  bool isCopiedInput_ = false;
  /// Whether what is read at depth 3 are the tool's questions, and the value at depth 4 the text of the
  /// first.
  bool areQuestions_ = false, isQuestion_ = false;
  /// The keys whose values are being read at depth 1 and 2, when they are of those above.
  std::string_view key_, detailKey_;
  /// What has come of the text that is being read.
  std::string text_;
};

}  // namespace

std::optional<StringMap> readHookEvent(const ByteSource& input, HookEventForm form) {
  EventHandler handler(form);
  JsonReader reader(handler, JsonReader::Halves::replaced);
  // To the end in any case, so that whoever writes it meets no closed pipe.
  for (std::string_view bytes = input(); !bytes.empty(); bytes = input()) reader.read(bytes);
  return reader.finish() ? handler.takeMap() : std::nullopt;
}

}  // namespace tarnwick
