#include "bridge/ArtworkLoader.h"

#include "bridge/Picture.h"

namespace tarnwick {

struct ArtworkLoader::Load {
  ArtworkLoader* loader;
  std::string url;
  std::shared_ptr<std::atomic<bool>> cancelled;
  std::string checksum;
  std::string base64;

  void run() {
    const std::string bytes = pictureAt(url, *cancelled);
    if (bytes.empty()) return;
    const auto* data = reinterpret_cast<const guchar*>(bytes.data());
    checksum = Owned<char>(g_compute_checksum_for_data(G_CHECKSUM_SHA1, data, bytes.size())).get();
    base64 = Owned<char>(g_base64_encode(data, bytes.size())).get();
  }
};

void ArtworkLoader::want(const std::string& url, const std::string& track) {
  if (url == url_ && track == track_) return;
  url_ = url;
  track_ = track;
  if (cancelled_) *cancelled_ = true;
  wantsAnother_ = !url_.empty();
  if (url_.empty()) {
    id_ = 0;
    release();
  } else if (!cancelled_) {
    startLoading();
  }
}

void ArtworkLoader::startLoading() {
  wantsAnother_ = false;
  cancelled_ = std::make_shared<std::atomic<bool>>(false);
  const auto finish = [](GObject*, GAsyncResult* result, gpointer) {
    const auto* load = static_cast<Load*>(g_task_get_task_data(G_TASK(result)));
    load->loader->finished(*load);
  };
  GTask* task = g_task_new(nullptr, nullptr, finish, nullptr);
  g_task_set_task_data(task, new Load{this, url_, cancelled_, {}, {}},
                       [](gpointer load) { delete static_cast<Load*>(load); });
  g_task_run_in_thread(task, [](GTask* running, gpointer, gpointer load, GCancellable*) {
    static_cast<Load*>(load)->run();
    g_task_return_boolean(running, true);
  });
  g_object_unref(task);
}

void ArtworkLoader::finished(const Load& load) {
  const bool outdated = *load.cancelled;
  cancelled_.reset();
  if (wantsAnother_) startLoading();
  if (outdated) return;
  if (load.base64.empty()) {
    id_ = 0;
    release();
  } else if (id_ == 0 || load.checksum != checksum_) {
    id_ = ++lastId_;
    checksum_ = load.checksum;
    base64_ = load.base64;
  }
  onLoaded_();
}

}  // namespace tarnwick
