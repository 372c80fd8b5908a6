#include "services/LineBuffer.h"

#include <utility>

namespace tarnwick {

std::vector<std::string> LineBuffer::append(std::string_view bytes) {
  std::vector<std::string> lines;
  for (size_t end; (end = bytes.find('\n')) != std::string_view::npos; bytes.remove_prefix(end + 1)) {
    keep(bytes.substr(0, end));
    if (!dropping_) lines.push_back(std::exchange(data_, {}));
    dropping_ = false;
  }
  keep(bytes);
  return lines;
}

void LineBuffer::keep(std::string_view bytes) {
  if (dropping_) return;
  if (data_.size() + bytes.size() > longestLine) {
    dropping_ = true;
    std::string().swap(data_);
  } else {
    data_ += bytes;
  }
}

}  // namespace tarnwick
