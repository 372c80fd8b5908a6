#include "dbus/BusReplies.h"

#include <gtest/gtest.h>

#include <bit>

using namespace tarnwick;
using namespace std::string_literals;

namespace {

/// A message of one type with some fields and a body of some length.
std::string message(char type, uint32_t fields, uint32_t body, bool isBigEndian) {
  const auto number = [&](uint32_t value) {
    std::string bytes(4, '\0');
    for (int index = 0; index < 4; ++index) {
      bytes[isBigEndian ? 3 - index : index] = static_cast<char>(value >> 8 * index);
    }
    return bytes;
  };
  return (isBigEndian ? "B"s : "l"s) + type + "\0\1"s + number(body) + number(9) + number(fields) +
         std::string((fields + 7) / 8 * 8 + body, 'x');
}

}  // namespace

TEST(BusReplies, CountsResultsAndErrorsHoweverTheyArrive) {
  for (const bool isBigEndian : {false, true}) {
    // A result, a signal, an error that has no body, a call.
    const std::string bytes =
        "DATA\r\nOK 0123456789abcdef0123456789abcdef\r\n" + message(2, 61, 9, isBigEndian) +
        message(4, 100, 300, isBigEndian) + message(3, 0, 0, isBigEndian) + message(1, 8, 1, isBigEndian);
    for (size_t size = 1; size <= bytes.size(); ++size) {
      BusReplies replies;
      for (size_t at = 0; at < bytes.size(); at += size) {
        ASSERT_TRUE(replies.consume(std::string_view(bytes).substr(at, size)));
      }
      EXPECT_EQ(replies.count(), 2u) << size;
    }
    BusReplies cutShort;
    EXPECT_TRUE(cutShort.consume(bytes.substr(0, bytes.find(message(4, 100, 300, isBigEndian)) - 1)));
    EXPECT_EQ(cutShort.count(), 0u);
  }
}

TEST(BusReplies, GivesUpOnWhatNoBusSends) {
  const std::string accepted = "OK 0123456789abcdef0123456789abcdef\r\n";
  const std::string refusals[] = {
      "REJECTED EXTERNAL\r\n",
      "ERROR\r\n",
      "HTTP/1.1 400 Bad Request\r\n",
      "\n",
      accepted + std::string(16, '\0'),
      accepted + "l\2\0\1\xFF\xFF\xFF\xFF\1\0\0\0\xFF\xFF\xFF\xFF"s,
  };
  for (const std::string& text : refusals) {
    BusReplies replies;
    EXPECT_FALSE(replies.consume(text)) << text;
    EXPECT_FALSE(replies.consume(accepted + message(2, 8, 1, false))) << text;
    EXPECT_EQ(replies.count(), 0u);
  }
}
