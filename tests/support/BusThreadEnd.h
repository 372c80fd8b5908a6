#pragma once
#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

namespace tarnwick {

/// Waits at its destruction until the toolkit's thread for message buses is gone, for five seconds at most.
/// One that is declared outside main ends after that thread was told to. The toolkit waits for the thread's
/// work only, and then forgets where threads keep what is theirs: a thread that is late loses it, and the
/// leak checker finds it.
struct BusThreadEnd {
  ~BusThreadEnd() {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (running() && std::chrono::steady_clock::now() < end) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }

  static bool running() {
    for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
      std::string name;
      std::getline(std::ifstream(thread.path() / "comm"), name);
      if (name.starts_with("QDBus")) return true;
    }
    return false;
  }
};

}  // namespace tarnwick
