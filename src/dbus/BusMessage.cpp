#include "dbus/BusMessage.h"

#include <bit>
#include <cstring>

#include "base/Utf8.h"

namespace tarnwick::BusMessage {
namespace {

enum class Type : char { methodCall = 1, signal = 4 };
enum class Field : char { path = 1, interface = 2, member = 3, destination = 6, signature = 8 };

constexpr char noReplyExpected = 1, noAutoStart = 2;

/// Marshals values; alignment counts from the message's first byte.
class Writer {
 public:
  std::string bytes;

  void align(size_t boundary) { bytes.resize((bytes.size() + boundary - 1) / boundary * boundary); }
  void number(uint32_t value) {
    align(4);
    bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
  }
  void string(std::string_view text) {
    number(static_cast<uint32_t>(text.size()));
    bytes += text;
    bytes += '\0';
  }
  void signature(std::string_view text) {
    bytes += static_cast<char>(text.size());
    bytes += text;
    bytes += '\0';
  }
  /// Leaves room for a length that is known only later, and returns its place.
  size_t reserveNumber() {
    number(0);
    return bytes.size() - 4;
  }
  void setNumber(size_t place, size_t value) {
    const auto narrow = static_cast<uint32_t>(value);
    std::memcpy(&bytes[place], &narrow, sizeof narrow);
  }
  void field(Field name, char type, std::string_view text) {
    align(8);
    bytes += static_cast<char>(name);
    signature({&type, 1});
    type == 'g' ? signature(text) : string(text);
  }
};

constexpr size_t bodyLengthPlace = 4;

/// The fixed start of a message; its fields follow.
/// @return the place of the fields' length.
size_t begin(Writer& writer, Type type, char flags, uint32_t serial) {
  writer.bytes += std::endian::native == std::endian::little ? 'l' : 'B';
  writer.bytes += static_cast<char>(type);
  writer.bytes += flags;
  writer.bytes += '\1';
  writer.number(0);
  writer.number(serial);
  return writer.reserveNumber();
}

void endFields(Writer& writer, size_t lengthPlace) {
  writer.setNumber(lengthPlace, writer.bytes.size() - lengthPlace - 4);
  writer.align(8);
}

/// The fields of a method call, up to its signature.
/// @return the place of the fields' length.
size_t beginCall(Writer& writer, uint32_t serial, std::string_view destination, std::string_view path,
    std::string_view interface, std::string_view member) {
  const size_t fields = begin(writer, Type::methodCall, noAutoStart, serial);
  writer.field(Field::path, 'o', path);
  writer.field(Field::destination, 's', destination);
  writer.field(Field::interface, 's', interface);
  writer.field(Field::member, 's', member);
  return fields;
}

/// All of a message but the fields before its signature: one argument, a map.
std::string endWithMap(Writer& writer, size_t fields, const std::map<std::string, std::string>& argument) {
  writer.field(Field::signature, 'g', "a{ss}");
  endFields(writer, fields);
  const size_t body = writer.bytes.size();
  const size_t length = writer.reserveNumber();
  writer.align(8);
  const size_t entries = writer.bytes.size();
  for (const auto& [key, value] : argument) {
    writer.align(8);
    writer.string(withoutInvalidUtf8(key));
    writer.string(withoutInvalidUtf8(value));
  }
  writer.setNumber(length, writer.bytes.size() - entries);
  writer.setNumber(bodyLengthPlace, writer.bytes.size() - body);
  return std::move(writer.bytes);
}

}  // namespace

std::string busCall(uint32_t serial, std::string_view interface, std::string_view member) {
  return call(serial, busName, busPath, interface, member);
}

std::string call(uint32_t serial, std::string_view destination, std::string_view path,
    std::string_view interface, std::string_view member, std::initializer_list<std::string_view> arguments) {
  Writer writer;
  const size_t fields = beginCall(writer, serial, destination, path, interface, member);
  if (arguments.size() > 0) writer.field(Field::signature, 'g', std::string(arguments.size(), 's'));
  endFields(writer, fields);
  const size_t body = writer.bytes.size();
  for (const std::string_view argument : arguments) writer.string(withoutInvalidUtf8(argument));
  writer.setNumber(bodyLengthPlace, writer.bytes.size() - body);
  return std::move(writer.bytes);
}

std::string call(uint32_t serial, std::string_view destination, std::string_view path,
    std::string_view interface, std::string_view member, const std::map<std::string, std::string>& argument) {
  Writer writer;
  const size_t fields = beginCall(writer, serial, destination, path, interface, member);
  return endWithMap(writer, fields, argument);
}

std::string signal(uint32_t serial, std::string_view path, std::string_view interface,
    std::string_view member, const std::map<std::string, std::string>& argument) {
  Writer writer;
  const size_t fields = begin(writer, Type::signal, noReplyExpected, serial);
  writer.field(Field::path, 'o', path);
  writer.field(Field::interface, 's', interface);
  writer.field(Field::member, 's', member);
  return endWithMap(writer, fields, argument);
}

}  // namespace tarnwick::BusMessage
