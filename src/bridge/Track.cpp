#include "bridge/Track.h"

#include <cmath>
#include <string_view>

#include "bridge/GLib.h"

namespace tarnwick {
namespace {

constexpr size_t longestText = 2000;

std::string bounded(std::string text) {
  if (text.size() <= longestText) return text;
  size_t end = longestText;
  while (end > 0 && (text[end] & 0xc0) == 0x80) --end;
  text.resize(end);
  return text;
}

/// A string or an object path; a list of strings joined by commas.
std::string text(GVariant* value) {
  if (!value) return "";
  if (g_variant_is_of_type(value, G_VARIANT_TYPE_STRING) ||
      g_variant_is_of_type(value, G_VARIANT_TYPE_OBJECT_PATH)) {
    return g_variant_get_string(value, nullptr);
  }
  std::string joined;
  if (g_variant_is_of_type(value, G_VARIANT_TYPE_STRING_ARRAY)) {
    const gsize count = g_variant_n_children(value);
    for (gsize i = 0; i < count && joined.size() <= longestText; ++i) {
      const Owned<GVariant> each(g_variant_get_child_value(value, i));
      const char* part = g_variant_get_string(each.get(), nullptr);
      if (*part) joined += (joined.empty() ? "" : ", ") + std::string(part);
    }
  }
  return joined;
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
    if (key == "mpris:trackid") track.id = text(value);
    if (key == "xesam:title") track.title = bounded(text(value));
    if (key == "xesam:artist") track.artist = bounded(text(value));
    if (key == "xesam:album") track.album = bounded(text(value));
    if (key == "mpris:length") track.length = std::max<int64_t>(integer(value), 0);
    if (key == "mpris:artUrl") track.artUrl = text(value);
    if (key == "xesam:url") url = text(value);
  }
  if (!g_variant_is_object_path(track.id.c_str()) || track.id.ends_with("/NoTrack")) track.id.clear();
  if (track.title.empty()) track.title = bounded(nameFromUrl(url));
  return track;
}

}  // namespace tarnwick
