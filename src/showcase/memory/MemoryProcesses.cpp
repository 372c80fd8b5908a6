#include "showcase/memory/MemoryProcesses.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace tarnwick {

class MemoryChildProcesses::Child : public ChildProcess {
 public:
  explicit Child(MemoryChildProcesses& all) : all_(all) {}
  ~Child() override {
    if (all_.child_ == this) all_.child_ = nullptr;
  }
  void awaitOutput() override {
    awaits = true;
    all_.offer();
  }
  std::string read() override {
    const size_t count = std::min<size_t>(all_.unread.size(), 64 << 10);
    std::string bytes = all_.unread.substr(0, count);
    all_.unread.erase(0, count);
    return bytes;
  }
  void write(const std::string& bytes) override { all_.input += bytes; }

  bool awaits = false;

 private:
  MemoryChildProcesses& all_;
};

std::unique_ptr<ChildProcess> MemoryChildProcesses::launch(
    const std::string& executable, const std::vector<std::string>& arguments, Events events) {
  launches.push_back({executable, arguments});
  events_ = std::move(events);
  auto child = std::make_unique<Child>(*this);
  child_ = child.get();
  return child;
}

void MemoryChildProcesses::output(const std::string& bytes) {
  unread += bytes;
  offer();
}

void MemoryChildProcesses::offer() {
  if (child_ && !unread.empty() && std::exchange(child_->awaits, false)) events_.onReadable();
}

std::optional<Application> MemoryApplications::runningApplication(int32_t process, const std::string& name) {
  namesAskedFor.push_back(name);
  const auto found = running.find(process);
  return found == running.end() ? std::nullopt : std::optional(found->second);
}

std::optional<Image> MemoryImageDecoder::decode(std::string_view bytes) const {
  int width = 0, height = 0;
  unsigned color = 0;
  if (std::sscanf(std::string(bytes).c_str(), "%dx%d %x", &width, &height, &color) != 3) return std::nullopt;
  const auto count = static_cast<size_t>(width * height);
  return Image{width, height, std::make_shared<std::vector<uint32_t>>(count, 0xff000000 | color)};
}

}  // namespace tarnwick
