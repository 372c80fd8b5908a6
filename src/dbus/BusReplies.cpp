#include "dbus/BusReplies.h"

#include <algorithm>

namespace tarnwick {
namespace {

// No bus accepts longer messages.
constexpr uint64_t longestMessage = uint64_t{1} << 27;
constexpr char methodReturn = 2, error = 3;

uint32_t numberAt(const char* bytes, bool isBigEndian) {
  uint32_t value = 0;
  for (int index = 0; index < 4; ++index) {
    value = value << 8 | static_cast<unsigned char>(bytes[isBigEndian ? index : 3 - index]);
  }
  return value;
}

}  // namespace

bool BusReplies::consume(std::string_view bytes) {
  while (!bytes.empty() && part_ != Part::broken) {
    if (part_ == Part::rest) {
      const uint64_t step = std::min<uint64_t>(remaining_, bytes.size());
      remaining_ -= step;
      bytes.remove_prefix(step);
    } else {
      const char byte = bytes.front();
      bytes.remove_prefix(1);
      if (length_ < start_.size()) start_[length_] = byte;
      ++length_;
      const bool isWhole = part_ == Part::authentication ? byte == '\n' : length_ == start_.size();
      if (isWhole && !(part_ == Part::authentication ? endLine() : endHeader())) part_ = Part::broken;
    }
    if (part_ == Part::rest && remaining_ == 0) {
      count_ += isReply_;
      part_ = Part::header;
    }
  }
  return part_ != Part::broken;
}

bool BusReplies::endLine() {
  const std::string_view line(start_.data(), std::min(length_, start_.size()));
  length_ = 0;
  if (line.starts_with("OK")) part_ = Part::header;
  return line.starts_with("OK") || line.starts_with("DATA");
}

bool BusReplies::endHeader() {
  length_ = 0;
  if (start_[0] != 'l' && start_[0] != 'B') return false;
  const bool isBigEndian = start_[0] == 'B';
  const uint64_t body = numberAt(&start_[4], isBigEndian), fields = numberAt(&start_[12], isBigEndian);
  isReply_ = start_[1] == methodReturn || start_[1] == error;
  remaining_ = (fields + 7) / 8 * 8 + body;
  part_ = Part::rest;
  return remaining_ <= longestMessage;
}

}  // namespace tarnwick
