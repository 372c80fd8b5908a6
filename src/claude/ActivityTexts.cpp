#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

#include "base/L10n.h"
#include "base/LastPathComponent.h"
#include "claude/ClaudeService.h"

namespace tarnwick {
namespace {

struct ToolLabel {
  std::string_view tool, english, french;
};

constexpr std::array toolLabels{
    ToolLabel{"Bash", "Running", "Exécute"},
    ToolLabel{"Read", "Reading", "Lit"},
    ToolLabel{"Edit", "Editing", "Modifie"},
    ToolLabel{"MultiEdit", "Editing", "Modifie"},
    ToolLabel{"Write", "Writing", "Écrit"},
    ToolLabel{"Grep", "Searching", "Cherche"},
    ToolLabel{"Glob", "Searching", "Cherche"},
    ToolLabel{"WebFetch", "Browsing the web", "Consulte le web"},
    ToolLabel{"WebSearch", "Browsing the web", "Consulte le web"},
    ToolLabel{"Task", "Delegating", "Délègue"},
    ToolLabel{"Agent", "Delegating", "Délègue"},
};

constexpr std::string_view permissionPhrase = "permission to use ";

std::string labelOf(const std::string& tool) {
  const auto it = std::find_if(
      toolLabels.begin(), toolLabels.end(), [&](const ToolLabel& label) { return label.tool == tool; });
  return it == toolLabels.end() ? tool : tr(it->english, it->french);
}

}  // namespace

// The texts that ClaudeService declares: apart from its rules, without a header of their own.

std::string ClaudeService::describe(
    const std::optional<std::string>& tool, const std::optional<std::string>& detail) {
  if (!tool) return tr("Working…", "Travaille…");
  std::string text = labelOf(*tool);
  if (detail && !detail->empty()) {
    text += " · ";
    text += detail->starts_with('/') ? lastPathComponent(*detail) : *detail;
  }
  return text;
}

bool ClaudeService::namesTool(std::string_view message) {
  return message.find(permissionPhrase) != message.npos;
}

std::string ClaudeService::translate(std::string_view message) {
  if (namesTool(message)) {
    const size_t tool = message.find(permissionPhrase) + permissionPhrase.size();
    return tr("Permission needed: ", "Permission demandée : ").append(message.substr(tool));
  }
  if (message.empty()) return tr("Waiting for you", "Attend ta réponse");
  return std::string(message);
}

std::string ClaudeService::describeRequest(
    const std::string& tool, const std::optional<std::string>& question) {
  if (tool == "AskUserQuestion" && question) return tr("Question: ", "Question : ") + *question;
  if (tool.empty()) return translate("");
  return tr("Permission needed: ", "Permission demandée : ") + tool;
}

std::string ClaudeService::describeFailure(const std::string& error) {
  if (error.empty()) return tr("Stopped by an error", "Arrêté par une erreur");
  return tr("Stopped by an error: ", "Arrêté par une erreur : ") + error;
}

std::string ClaudeService::format(double seconds) {
  // Also tames what is no number; the upper bound is far beyond the age of any session.
  const long long whole = seconds > 0 ? static_cast<long long>(std::min(seconds, 1e15)) : 0;
  char text[32];
  if (whole < 60) {
    std::snprintf(text, sizeof text, "%llds", whole);
  } else {
    std::snprintf(text, sizeof text, "%lldm%02llds", whole / 60, whole % 60);
  }
  return text;
}

}  // namespace tarnwick
