#include "bridge/Picture.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>

#include "bridge/GLib.h"
#include "bridge/WebFetch.h"

namespace tarnwick {
namespace {

constexpr size_t largestPicture = size_t{8} << 20;

std::string contentsOfFile(const std::string& url) {
  const Owned<char> path(g_filename_from_uri(url.c_str(), nullptr, nullptr));
  // Not blocking: it may turn out to be a pipe.
  const int file = path ? ::open(path.get(), O_RDONLY | O_CLOEXEC | O_NONBLOCK) : -1;
  if (file < 0) return "";
  std::string bytes;
  struct stat status = {};
  if (::fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0 &&
      static_cast<size_t>(status.st_size) <= largestPicture) {
    bytes.resize(static_cast<size_t>(status.st_size));
    size_t filled = 0;
    ssize_t count = 0;
    while (filled < bytes.size() &&
           (count = ::read(file, bytes.data() + filled, bytes.size() - filled)) > 0) {
      filled += static_cast<size_t>(count);
    }
    bytes.resize(filled);
  }
  ::close(file);
  return bytes;
}

std::string contentsOfDataUrl(const std::string& url) {
  const size_t comma = url.find(',');
  // Base64 takes four bytes for three, percent-encoding three for one.
  if (comma == std::string::npos || url.size() - comma > 3 * largestPicture) return "";
  const Owned<GBytes> plain(g_uri_unescape_bytes(url.c_str() + comma + 1, -1, nullptr, nullptr));
  if (!plain) return "";
  gsize size = 0;
  const auto* data = static_cast<const char*>(g_bytes_get_data(plain.get(), &size));
  std::string bytes(data ? data : "", size);
  if (url.substr(0, comma).ends_with(";base64")) {
    const Owned<guchar> decoded(g_base64_decode(bytes.c_str(), &size));
    bytes.assign(reinterpret_cast<const char*>(decoded.get()), size);
  }
  return bytes.size() <= largestPicture ? bytes : "";
}

}  // namespace

std::string pictureAt(const std::string& url, const std::atomic<bool>& cancelled) {
  const Owned<char> scheme(g_uri_parse_scheme(url.c_str()));
  if (!scheme) return "";
  const std::string name(Owned<char>(g_ascii_strdown(scheme.get(), -1)).get());
  if (name == "file") return contentsOfFile(url);
  if (name == "data") return contentsOfDataUrl(url);
  if (name == "http" || name == "https") return fetchFromWeb(url, largestPicture, cancelled);
  return "";
}

}  // namespace tarnwick
