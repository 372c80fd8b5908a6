#include "bridge/Track.h"

#include <cmath>
#include <string_view>

#include "bridge/GLib.h"

namespace tarnwick {
namespace {

constexpr size_t longestText = 500;
constexpr size_t longestAddress = 4000;
/// A picture may stand in its address.
constexpr size_t longestPictureAddress = size_t{2} << 20;

std::string bounded(std::string_view text) {
  size_t end = std::min(text.size(), longestText);
  while (end > 0 && end < text.size() && (text[end] & 0xc0) == 0x80) --end;
  return std::string(text.substr(0, end));
}

/// A string or an object path that is not longer than that.
std::string string(GVariant* value, size_t longest) {
  if (!g_variant_is_of_type(value, G_VARIANT_TYPE_STRING) &&
      !g_variant_is_of_type(value, G_VARIANT_TYPE_OBJECT_PATH)) {
    return "";
  }
  gsize size = 0;
  const char* text = g_variant_get_string(value, &size);
  return size <= longest ? std::string(text, size) : "";
}

/// The beginning of a string, or of a list of strings joined by commas.
std::string text(GVariant* value) {
  if (g_variant_is_of_type(value, G_VARIANT_TYPE_STRING))
    return bounded(g_variant_get_string(value, nullptr));
  std::string joined;
  if (g_variant_is_of_type(value, G_VARIANT_TYPE_STRING_ARRAY)) {
    const gsize count = std::min<gsize>(g_variant_n_children(value), longestText);
    for (gsize i = 0; i < count && joined.size() <= longestText; ++i) {
      const Owned<GVariant> each(g_variant_get_child_value(value, i));
      const std::string part = bounded(g_variant_get_string(each.get(), nullptr));
      if (!part.empty()) joined += (joined.empty() ? "" : ", ") + part;
    }
  }
  return bounded(joined);
}

/// Microseconds; 0 when it is no length that a track could have.
int64_t lengthOf(GVariant* value) {
  const int64_t microseconds = integer(value);
  return microseconds > 0 && microseconds <= longestTrack ? microseconds : 0;
}

/// The last part of the address of what plays, for files without a title.
std::string nameFromUrl(const std::string& url) {
  const std::string path = url.substr(0, url.find_first_of("?#"));
  const size_t slash = path.find_last_of('/');
  if (slash == std::string::npos) return "";
  const Owned<char> name(g_uri_unescape_string(path.c_str() + slash + 1, nullptr));
  return name && g_utf8_validate(name.get(), -1, nullptr) ? name.get() : "";
}

}  // namespace

int64_t integer(GVariant* value) {
  if (!value) return 0;
  switch (g_variant_classify(value)) {
    case G_VARIANT_CLASS_INT16:
      return g_variant_get_int16(value);
    case G_VARIANT_CLASS_UINT16:
      return g_variant_get_uint16(value);
    case G_VARIANT_CLASS_INT32:
      return g_variant_get_int32(value);
    case G_VARIANT_CLASS_UINT32:
      return g_variant_get_uint32(value);
    case G_VARIANT_CLASS_INT64:
      return g_variant_get_int64(value);
    case G_VARIANT_CLASS_UINT64:
      return static_cast<int64_t>(std::min<uint64_t>(g_variant_get_uint64(value), INT64_MAX));
    case G_VARIANT_CLASS_DOUBLE: {
      const double number = g_variant_get_double(value);
      return std::isfinite(number) && std::abs(number) < 9e18 ? static_cast<int64_t>(number) : 0;
    }
    default:
      return 0;
  }
}

Track Track::from(GVariant* metadata) {
  Track track;
  std::string url;
  GVariantIter entries;
  g_variant_iter_init(&entries, metadata);
  const char* name = nullptr;
  GVariant* value = nullptr;
  while (g_variant_iter_loop(&entries, "{&sv}", &name, &value)) {
    const std::string_view key = name;
    if (key == "mpris:trackid") track.id = string(value, longestAddress);
    if (key == "xesam:title") track.title = text(value);
    if (key == "xesam:artist") track.artist = text(value);
    if (key == "xesam:album") track.album = text(value);
    if (key == "mpris:length") track.length = lengthOf(value);
    if (key == "mpris:artUrl") track.artUrl = string(value, longestPictureAddress);
    if (key == "xesam:url") url = string(value, longestAddress);
  }
  if (!g_variant_is_object_path(track.id.c_str()) || track.id.ends_with("/NoTrack")) track.id.clear();
  if (track.title.empty()) track.title = bounded(nameFromUrl(url));
  return track;
}

}  // namespace tarnwick
