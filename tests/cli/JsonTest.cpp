#include "cli/Json.h"

#include <gtest/gtest.h>

TEST(Json, WritesFieldsInTheOrderGiven)
{
    CJsonWriter json;
    json.BeginObject()
        .Field(L"b", 1)
        .Field(L"a", true)
        .Key(L"list")
        .BeginArray()
        .Number(-1)
        .Text(L"x")
        .EndArray();
    json.EndObject();
    EXPECT_EQ(json.Document(), "{\"b\": 1, \"a\": true, \"list\": [-1, \"x\"]}\n");
}

TEST(Json, WritesEmptyBrackets)
{
    CJsonWriter json;
    json.BeginObject().Key(L"a").BeginArray().EndArray().Key(L"o").BeginObject().EndObject().EndObject();
    EXPECT_EQ(json.Document(), "{\"a\": [], \"o\": {}}\n");
}

TEST(Json, EscapesQuotesBackslashesAndControlCharacters)
{
    CJsonWriter json;
    json.Text(L"\"q\" \\ \n\t\x01");
    EXPECT_EQ(json.Document(), "\"\\\"q\\\" \\\\ \\n\\t\\u0001\"\n");
}

TEST(Json, WritesOtherScriptsAsUtf8)
{
    CJsonWriter json;
    json.Text(L"\x00e9\x0416");
    EXPECT_EQ(json.Document(), "\"\xc3\xa9\xd0\x96\"\n");
}
