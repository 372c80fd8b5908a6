#include "dbus/BusClient.h"

#include <poll.h>

#include <bit>
#include <cerrno>
#include <cstring>

#include "dbus/BusMessage.h"
#include "dbus/LocalSocket.h"

namespace tarnwick {
namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::milliseconds;

constexpr size_t fixedLength = 16, longestMessage = 16 << 20;

/// Reads marshalled values; alignment counts from the message's first byte. After what is not there, or too
/// long for what is, it `failed`, and all is empty.
class Reader {
 public:
  Reader(std::string_view bytes, size_t at) : bytes_(bytes), at_(at) {}

  bool failed = false;
  size_t at() const { return at_; }
  void align(size_t boundary) { at_ = (at_ + boundary - 1) / boundary * boundary; }
  uint32_t number() {
    align(4);
    uint32_t value = 0;
    const std::string_view bytes = take(sizeof value);
    if (!failed) std::memcpy(&value, bytes.data(), sizeof value);
    return value;
  }
  std::string_view string() { return text(number()); }
  std::string_view signature() {
    const std::string_view length = take(1);
    return failed ? std::string_view() : text(static_cast<unsigned char>(length[0]));
  }
  std::string_view take(size_t length) {
    failed = failed || at_ > bytes_.size() || length > bytes_.size() - at_;
    if (failed) return {};
    at_ += length;
    return bytes_.substr(at_ - length, length);
  }

 private:
  /// With the zero behind it.
  std::string_view text(size_t length) {
    const std::string_view bytes = take(length + 1);
    return failed ? bytes : bytes.substr(0, length);
  }

  std::string_view bytes_;
  size_t at_;
};

BusEvent::Kind kindOf(char type) {
  using enum BusEvent::Kind;
  return type == 2 ? reply : type == 3 ? error : type == 4 ? signal : other;
}

/// The length of the message that begins there; 0: it is none of ours.
size_t lengthOf(std::string_view start) {
  if (start[0] != (std::endian::native == std::endian::little ? 'l' : 'B')) return 0;
  uint64_t body = Reader(start, 4).number(), fields = Reader(start, 12).number();
  const uint64_t length = fixedLength + (fields + 7) / 8 * 8 + body;
  return length <= longestMessage ? length : 0;
}

std::optional<BusEvent> read(std::string_view message) {
  BusEvent event{.kind = kindOf(message[1])};
  const size_t endOfFields = fixedLength + Reader(message, 12).number();
  std::string_view shape;
  Reader reader(message, fixedLength);
  while (!reader.failed && reader.at() < endOfFields) {
    reader.align(8);
    const std::string_view field = reader.take(1), type = reader.signature();
    if (type == "s" || type == "o") {
      const std::string_view value = reader.string();
      if (field == "\3") event.member = value;
      if (field == "\4") event.error = value;
    } else if (type == "g") {
      const std::string_view value = reader.signature();
      if (field == "\10") shape = value;
    } else if (type == "u") {
      const uint32_t value = reader.number();
      if (field == "\5") event.answered = value;
    } else {
      return std::nullopt;
    }
  }
  reader.align(8);
  for (size_t i = 0; i < shape.size() && shape[i] == 's'; ++i) event.arguments.emplace_back(reader.string());
  return reader.failed ? std::nullopt : std::optional(std::move(event));
}

}  // namespace

BusClient::BusClient(const std::vector<BusAddress>& addresses) {
  for (const BusAddress& address : addresses) {
    socket_ = connectTo(address, SOCK_STREAM);
    if (socket_ >= 0 && isTrusted(socket_)) break;
    socket_ = Descriptor();
  }
  unsent_ = BusMessage::authentication;
  unsent_ += BusMessage::busCall(calls_, BusMessage::busName, "Hello");
}

uint32_t BusClient::call(std::string_view destination, std::string_view path, std::string_view interface,
    std::string_view member, std::initializer_list<std::string_view> arguments) {
  send(BusMessage::call(++calls_, destination, path, interface, member, arguments));
  return calls_;
}

uint32_t BusClient::call(std::string_view destination, std::string_view path, std::string_view interface,
    std::string_view member, const std::map<std::string, std::string>& argument) {
  send(BusMessage::call(++calls_, destination, path, interface, member, argument));
  return calls_;
}

std::optional<BusEvent> BusClient::next(Patience patience, int output) {
  const Clock::time_point deadline = Clock::now() + patience.value_or(Milliseconds::zero());
  while (socket_ >= 0) {
    if (auto event = take()) return event;
    const auto left = std::chrono::ceil<Milliseconds>(deadline - Clock::now()).count();
    if (socket_ < 0 || (patience && left <= 0)) break;
    const short events = unsent_.empty() ? POLLIN : POLLIN | POLLOUT;
    pollfd ready[] = {{socket_, events, 0}, {output, 0, 0}};
    if (::poll(ready, 2, patience ? static_cast<int>(left) : -1) < 0 && errno != EINTR) break;
    if (ready[1].revents != 0) break;
    if (!exchange()) end();
  }
  return std::nullopt;
}

std::optional<BusEvent> BusClient::answer(uint32_t call, Milliseconds patience, int output) {
  const Clock::time_point deadline = Clock::now() + patience;
  while (auto event = next(std::chrono::ceil<Milliseconds>(deadline - Clock::now()), output)) {
    if (event->answered == call) return event;
  }
  return std::nullopt;
}

/// Sends and receives what there is. @return false when the connection has ended
bool BusClient::exchange() {
  const auto isNothing = [] { return errno == EAGAIN || errno == EINTR; };
  if (!unsent_.empty()) {
    const ssize_t sent = ::send(socket_, unsent_.data(), unsent_.size(), MSG_NOSIGNAL);
    if (sent < 0 && !isNothing()) return false;
    if (sent > 0) unsent_.erase(0, static_cast<size_t>(sent));
  }
  char buffer[16384];
  const ssize_t length = ::recv(socket_, buffer, sizeof buffer, 0);
  if (length > 0) received_.append(buffer, static_cast<size_t>(length));
  return length > 0 || (length < 0 && isNothing());
}

/// The next whole message that has come.
std::optional<BusEvent> BusClient::take() {
  while (!isAccepted_) {
    const size_t end = received_.find('\n');
    if (end == received_.npos) return std::nullopt;
    isAccepted_ = received_.starts_with("OK");
    if (!isAccepted_ && !received_.starts_with("DATA")) {
      this->end();
      return std::nullopt;
    }
    received_.erase(0, end + 1);
  }
  if (received_.size() < fixedLength) return std::nullopt;
  const size_t length = lengthOf(received_);
  if (length > received_.size()) return std::nullopt;
  auto event = length > 0 ? read(std::string_view(received_).substr(0, length)) : std::nullopt;
  received_.erase(0, length);
  if (!event) end();
  return event;
}

}  // namespace tarnwick
