#include "bridge/WebFetch.h"

#include <curl/curl.h>
#include <dlfcn.h>

namespace tarnwick {
namespace {

/// The library is only loaded, once, by the first cover that needs it.
class Curl {
 public:
  decltype(&::curl_easy_init) init = nullptr;
  decltype(&::curl_easy_setopt) setopt = nullptr;
  decltype(&::curl_easy_perform) perform = nullptr;
  decltype(&::curl_easy_cleanup) cleanup = nullptr;

  Curl() {
    void* library = nullptr;
    for (const char* name : {"libcurl.so.4", "libcurl-gnutls.so.4", "libcurl-nss.so.4"}) {
      if ((library = ::dlopen(name, RTLD_NOW | RTLD_LOCAL))) break;
    }
    if (!library) return;
    find(library, "curl_easy_init", init);
    find(library, "curl_easy_setopt", setopt);
    find(library, "curl_easy_perform", perform);
    find(library, "curl_easy_cleanup", cleanup);
  }
  bool isThere() const { return init && setopt && perform && cleanup; }

 private:
  template<typename Function>
  static void find(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(::dlsym(library, name));
  }
};

struct Download {
  std::string bytes;
  size_t limit;
  const std::atomic<bool>& cancelled;
};

size_t receive(const char* data, size_t, size_t size, void* into) {
  auto* download = static_cast<Download*>(into);
  if (download->bytes.size() + size > download->limit) return 0;
  download->bytes.append(data, size);
  return size;
}

int progress(void* of, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
  return static_cast<Download*>(of)->cancelled;
}

}  // namespace

// The header would turn each option into a call by name.
#undef curl_easy_setopt

std::string fetchFromWeb(const std::string& url, size_t limit, const std::atomic<bool>& cancelled) {
  static const Curl curl;
  CURL* request = curl.isThere() ? curl.init() : nullptr;
  if (!request) return "";
  Download download{{}, limit, cancelled};
  constexpr long webOnly = CURLPROTO_HTTP | CURLPROTO_HTTPS;
  curl.setopt(request, CURLOPT_URL, url.c_str());
  // Their successors are unknown to libraries that are still around.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
  curl.setopt(request, CURLOPT_PROTOCOLS, webOnly);
  curl.setopt(request, CURLOPT_REDIR_PROTOCOLS, webOnly);
#pragma GCC diagnostic pop
  curl.setopt(request, CURLOPT_FOLLOWLOCATION, 1L);
  curl.setopt(request, CURLOPT_MAXREDIRS, 5L);
  curl.setopt(request, CURLOPT_FAILONERROR, 1L);
  curl.setopt(request, CURLOPT_NOSIGNAL, 1L);
  curl.setopt(request, CURLOPT_CONNECTTIMEOUT_MS, 5000L);
  curl.setopt(request, CURLOPT_TIMEOUT_MS, 10000L);
  curl.setopt(request, CURLOPT_WRITEFUNCTION, receive);
  curl.setopt(request, CURLOPT_WRITEDATA, &download);
  curl.setopt(request, CURLOPT_NOPROGRESS, 0L);
  curl.setopt(request, CURLOPT_XFERINFOFUNCTION, progress);
  curl.setopt(request, CURLOPT_XFERINFODATA, &download);
  const CURLcode result = curl.perform(request);
  curl.cleanup(request);
  return result == CURLE_OK ? std::move(download.bytes) : "";
}

}  // namespace tarnwick
