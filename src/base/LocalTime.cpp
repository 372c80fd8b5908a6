#include "base/LocalTime.h"

#include <cmath>
#include <cstdio>
#include <ctime>

#include "base/L10n.h"

namespace tarnwick {
namespace {

std::tm localTime(Date date) {
  ::tzset();  // the user may have travelled
  const auto seconds = static_cast<std::time_t>(std::floor(date.secondsSince1970));
  std::tm parts{};
  ::localtime_r(&seconds, &parts);
  return parts;
}

}  // namespace

Date startOfDay(Date date, int daysLater) {
  std::tm parts = localTime(date);
  parts.tm_mday += daysLater;
  parts.tm_hour = parts.tm_min = parts.tm_sec = 0;
  parts.tm_isdst = -1;
  return {static_cast<double>(std::mktime(&parts))};
}

std::string shortTime(Date date) {
  const std::tm parts = localTime(date);
  char text[16];
  if (L10n::isFrench()) {
    std::snprintf(text, sizeof text, "%02d:%02d", parts.tm_hour, parts.tm_min);
  } else {
    const int hour = parts.tm_hour % 12;
    std::snprintf(text, sizeof text, "%d:%02d %s", hour == 0 ? 12 : hour, parts.tm_min,
        parts.tm_hour < 12 ? "AM" : "PM");
  }
  return text;
}

int dayOfMonth(Date date) { return localTime(date).tm_mday; }

std::string weekdayName(Date date) {
  static constexpr const char* names[][2] = {{"Sunday", "Dimanche"}, {"Monday", "Lundi"},
      {"Tuesday", "Mardi"}, {"Wednesday", "Mercredi"}, {"Thursday", "Jeudi"}, {"Friday", "Vendredi"},
      {"Saturday", "Samedi"}};
  const auto& [english, french] = names[localTime(date).tm_wday];
  return tr(english, french);
}

}  // namespace tarnwick
