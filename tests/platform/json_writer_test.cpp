#include "platform/json_writer.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace tarvex {
namespace {

TEST(JsonQuote, EscapesQuotesBackslashesAndControlCharacters) {
  EXPECT_EQ(JsonQuote("a\"b\\c"), "\"a\\\"b\\\\c\"");
  EXPECT_EQ(JsonQuote("\n\t\r\b\f"), "\"\\n\\t\\r\\b\\f\"");
  EXPECT_EQ(JsonQuote(std::string("\x01\x1f\x7f", 3)), "\"\\u0001\\u001f\\u007f\"");
  EXPECT_EQ(JsonQuote(std::string("a\0b", 3)), "\"a\\u0000b\"");
}

TEST(JsonQuote, KeepsWellFormedUtf8AndEscapesOtherBytes) {
  EXPECT_EQ(JsonQuote("Fran\xc3\xa7"
                      "ais \xe2\x82\xac"),
            "\"Fran\xc3\xa7"
            "ais \xe2\x82\xac\"");
  // A lone continuation byte, a truncated sequence, an overlong form and a surrogate.
  EXPECT_EQ(JsonQuote("\x80"), "\"\\u0080\"");
  EXPECT_EQ(JsonQuote("\xc3"), "\"\\u00c3\"");
  EXPECT_EQ(JsonQuote("\xc0\xaf"), "\"\\u00c0\\u00af\"");
  EXPECT_EQ(JsonQuote("\xed\xa0\x80"), "\"\\u00ed\\u00a0\\u0080\"");
  EXPECT_EQ(JsonQuote("\xf4\x90\x80\x80"), "\"\\u00f4\\u0090\\u0080\\u0080\"");
}

TEST(JsonQuote, EveryByteStringParsesBack) {
  std::string all;
  for (int c = 0; c < 256; ++c) all += static_cast<char>(c);
  nlohmann::json parsed = nlohmann::json::parse(JsonQuote(all));
  std::string back = parsed.get<std::string>();
  // ASCII comes back as it was; every other byte as the code point of its value.
  EXPECT_EQ(back.substr(0, 128), all.substr(0, 128));
  EXPECT_EQ(back.substr(128, 2), "\xc2\x80");
}

TEST(JsonWriter, NestsWithCommasAndParsesBack) {
  JsonWriter j;
  j.BeginObject().Member("name", "x\"y").MemberUint("n", 7).Key("list").BeginArray();
  j.Int(-3).Decimal(2.934, 3).Decimal(8.0, 3).Bool(true).Null().BeginObject().EndObject();
  j.EndArray().EndObject();
  nlohmann::json v = nlohmann::json::parse(j.text());
  EXPECT_EQ(v["name"], "x\"y");
  EXPECT_EQ(v["n"], 7);
  ASSERT_EQ(v["list"].size(), 6u);
  EXPECT_EQ(v["list"][0], -3);
  EXPECT_DOUBLE_EQ(v["list"][1].get<double>(), 2.934);
  EXPECT_EQ(j.text().find("8.000"), std::string::npos);  // trailing zeros kept off
  EXPECT_EQ(v["list"][2], 8);
  EXPECT_TRUE(v["list"][4].is_null());
}

TEST(JsonWriter, CompactDepthPutsInnerObjectsOnOneLine) {
  JsonWriter j;
  j.set_compact_depth(2);
  j.BeginObject().Key("packets").BeginArray();
  j.BeginObject().MemberUint("record", 0).Member("type", "Video").EndObject();
  j.BeginObject().MemberUint("record", 1).EndObject();
  j.EndArray().EndObject();
  EXPECT_EQ(j.text(),
            "{\n  \"packets\": [\n    {\"record\": 0, \"type\": \"Video\"},\n"
            "    {\"record\": 1}\n  ]\n}\n");
}

TEST(JsonWriter, NonFiniteNumbersAreNull) {
  JsonWriter j(false);
  j.BeginArray().Decimal(1.0 / 0.0, 3).EndArray();
  EXPECT_EQ(j.text(), "[null]");
}

}  // namespace
}  // namespace tarvex
