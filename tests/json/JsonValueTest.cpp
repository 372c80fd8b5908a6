#include "json/JsonValue.h"

#include <gtest/gtest.h>

using namespace tarnwick;
using namespace std::string_literals;

namespace {

std::string rewritten(const std::string& json) {
  std::string error;
  const auto value = parseJson(json, error);
  return value ? writeJson(*value) : error;
}

}  // namespace

TEST(JsonValue, IsWrittenBackSortedAndIndented) {
  struct Case {
    std::string json, written;
  };
  const Case cases[] = {
      {"{}", "{}\n"},
      {"\xEF\xBB\xBF[]", "[]\n"},
      {R"({"b":{"z":[],"a":{}},"a":[true,false,null]})",
          "{\n  \"a\": [\n    true,\n    false,\n    null\n  ],\n  \"b\": {\n    \"a\": {},\n    \"z\": []\n "
          " "
          "}\n}\n"},
      {R"({"a":1,"a":2})", "{\n  \"a\": 2\n}\n"},
      {R"(["\/a\/b","é日😀","\u00e9\ud83d\ude00","\"\\\b\f\n\r\t\u0000\u001f\u007f"])",
          "[\n  \"/a/b\",\n  \"é日😀\",\n  \"é😀\",\n  \"\\\"\\\\\\b\\f\\n\\r\\t\\u0000\\u001f\x7F\"\n]\n"},
      // Halves of surrogate pairs, as programs write them that cut a text inside an emoji.
      {R"({"\uDE00":"\ud83d\ud83d\ude00\ude00"})", "{\n  \"\\ude00\": \"\\ud83d😀\\ude00\"\n}\n"},
      {R"("\ud83d\\ude00 \\ud83d")", "\"\\ud83d\\\\ude00 \\\\ud83d\"\n"},
  };
  for (const Case& one : cases) {
    EXPECT_EQ(rewritten(one.json), one.written);
    EXPECT_EQ(rewritten(one.written), one.written);
  }
}

TEST(JsonValue, KeepsNumbersAsTheyAreWritten) {
  struct Case {
    std::string text;
    std::optional<double> real;
    std::optional<int64_t> integer;
  };
  const Case cases[] = {
      {"0", 0, 0},
      {"-0", 0, 0},
      {"1.10", 1.1, std::nullopt},
      {"-1.5E+10", -1.5e10, std::nullopt},
      {"1e400", std::nullopt, std::nullopt},
      {"-9223372036854775808", -0x1p63, INT64_MIN},
      {"12345678901234567890123", 12345678901234567890123., std::nullopt},
      {std::string(400, '9'), std::nullopt, std::nullopt},
  };
  for (const Case& one : cases) {
    EXPECT_EQ(rewritten("[" + one.text + "]"), "[\n  " + one.text + "\n]\n");
    EXPECT_EQ(JsonNumber{one.text}.real(), one.real) << one.text;
    EXPECT_EQ(JsonNumber{one.text}.integer(), one.integer) << one.text;
  }
}

TEST(JsonValue, TellsWhatIsWrongAndWhere) {
  struct Case {
    std::string json, error;
  };
  const Case cases[] = {
      {"", "incomplete JSON (at byte 0)"},
      {"{\"a\":1,}", "syntax error (at byte 7)"},
      {R"(["\ud83d", "\ud83d\ude00",x])", "syntax error (at byte 26)"},
      {"\xEF\xBB\xBF[01]", "syntax error (at byte 5)"},
      {"{}\0x"s, "extra data (at byte 2)"},
      {"{} {}", "extra data (at byte 3)"},
      {"[\"\xE9\"]", "invalid UTF-8"},
      {"[\"\xED\xA0\x80\"]", "invalid UTF-8"},
      {"\\ud83d[]", "syntax error (at byte 0)"},
      {std::string(513, '[') + std::string(513, ']'), "too deep (at byte 512)"},
      {std::string(512, '['), "incomplete JSON (at byte 512)"},
  };
  for (const Case& one : cases) EXPECT_EQ(rewritten(one.json), one.error) << one.json.substr(0, 40);
}
