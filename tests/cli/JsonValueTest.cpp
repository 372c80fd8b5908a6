#include "cli/JsonValue.h"

#include <gtest/gtest.h>

using namespace tarnwick;
using namespace std::string_literals;

namespace {

std::string rewritten(const std::string& json) {
  std::string error;
  const auto value = parseJson(json, error);
  return value ? writeJson(*value).value_or("not writable") : error;
}

}  // namespace

TEST(JsonValue, IsWrittenBackSortedAndIndented) {
  struct Case {
    std::string json, written;
  };
  const Case cases[] = {
      {"{}", "{}\n"},
      {"[]", "[]\n"},
      {"null", "null\n"},
      {R"({"b":{"z":[],"a":{}},"a":[true,false,null]})",
       "{\n  \"a\": [\n    true,\n    false,\n    null\n  ],\n  \"b\": {\n    \"a\": {},\n    \"z\": []\n  "
       "}\n}\n"},
      {R"({"a":1,"a":2})", "{\n  \"a\": 2\n}\n"},
      {R"(["\/a\/b","é日😀","\u00e9\ud83d\ude00","\"\\\b\f\n\r\t\u0000\u001f\u007f"])",
       "[\n  \"/a/b\",\n  \"é日😀\",\n  \"é😀\",\n  \"\\\"\\\\\\b\\f\\n\\r\\t\\u0000\\u001F\x7F\"\n]\n"},
  };
  for (const Case& one : cases) {
    EXPECT_EQ(rewritten(one.json), one.written);
    EXPECT_EQ(rewritten(one.written), one.written);
  }
}

TEST(JsonValue, KeepsNumbersAsTheyAreWritten) {
  const std::string numbers[] = {"0",
                                 "-0",
                                 "1.10",
                                 "-1.5E+10",
                                 "1e400",
                                 "1E-999",
                                 "12345678901234567890123",
                                 std::string(400, '9'),
                                 "0." + std::string(400, '0') + "1"};
  for (const std::string& number : numbers) {
    EXPECT_EQ(rewritten(number), number + "\n");
    // Strings that look like numbers, and what may stand around a number, stay as they are.
    const std::string json =
        "{\"" + number + "\":[" + number + ",\"" + number + "\\\"-1\\\\\"," + number + "]}";
    EXPECT_EQ(rewritten(json), "{\n  \"" + number + "\": [\n    " + number + ",\n    \"" + number +
                                   "\\\"-1\\\\\",\n    " + number + "\n  ]\n}\n");
  }
}

TEST(JsonValue, TellsWhatIsWrongAndWhere) {
  struct Case {
    std::string json, error;
  };
  const Case cases[] = {
      {"", "The document is empty. (at byte 0)"},
      {"{\"a\":1,}", "Missing a name for object member. (at byte 7)"},
      {"[1e400,x]", "Invalid value. (at byte 7)"},
      {"[01]", "Missing a comma or ']' after an array element. (at byte 2)"},
      {"[1.]", "Miss fraction part in number. (at byte 3)"},
      {"[-]", "Invalid value. (at byte 2)"},
      {"{}\0x"s, "Invalid value. (at byte 2)"},
      {"[\"\xE9\"]", "Invalid encoding in string. (at byte 2)"},
      {std::string(513, '[') + std::string(513, ']'), "Too many nested arrays or objects. (at byte 512)"},
      {std::string(100000, '['), "Too many nested arrays or objects. (at byte 512)"},
  };
  for (const Case& one : cases) EXPECT_EQ(rewritten(one.json), one.error) << one.json.substr(0, 40);
  EXPECT_TRUE(rewritten(std::string(512, '[') + std::string(512, ']')).ends_with("]\n"));
}

TEST(JsonValue, IsNotWrittenWithInvalidUtf8) {
  EXPECT_EQ(writeJson({JsonObject{{"a", {"caf\xE9"}}}}), std::nullopt);
  EXPECT_EQ(writeJson({JsonArray{{JsonObject{{"caf\xE9", {true}}}}}}), std::nullopt);
}
