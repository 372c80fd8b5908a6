#include "claude/SessionsJson.h"

#include "json/JsonString.h"

namespace tarnwick {
namespace {

const char* nameOf(Phase phase) {
  switch (phase) {
    case Phase::waiting:
      return "waiting";
    case Phase::working:
      return "working";
    case Phase::done:
      return "done";
    case Phase::idle:
      break;
  }
  return "idle";
}

std::string jsonOf(const Session& session) {
  const Date since = session.phase == Phase::working ? session.startedAt : session.phaseSince;
  return R"({"phase":")" + std::string(nameOf(session.phase)) + R"(","project":)" +
         jsonString(session.project) +
         (session.elsewhere ? R"(,"machine":)" + jsonString(*session.elsewhere) : "") + R"(,"activity":)" +
         jsonString(session.activity) + R"(,"since":)" +
         std::to_string(static_cast<long long>(since.secondsSince1970)) + "}";
}

}  // namespace

std::string sessionsJson(const std::vector<Session>& sessions) {
  std::string json = "[";
  for (const Session& session : sessions) {
    if (json.size() > 1) json += ',';
    json += jsonOf(session);
  }
  return json += ']';
}

}  // namespace tarnwick
