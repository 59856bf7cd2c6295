#include "services/Validate.h"

#include "services/ScriptedUiPort.h"

#include <functional>
#include <optional>
#include <string>

#include <gtest/gtest.h>

namespace {

using services::clsValidate;

struct Port : services::ScriptedUiPort
{
    Port() { echo = false; }
};

// Runs ValidateText on a fresh Init'ed validator with the given rules; returns the text shown,
// empty when nothing was shown, and checks that the result agrees with it.
std::string Validate(const std::function<void(clsValidate&)>& rules,
                     std::optional<std::string> value)
{
    Port ui;
    clsValidate v;
    v.Init();
    rules(v);
    v.CheckText = std::move(value);
    bool result = true;
    v.ValidateText(ui, result);
    EXPECT_LE(ui.shown.size(), 1u);
    const std::string shown = ui.shown.empty() ? "" : ui.shown[0].Text();
    EXPECT_EQ(result, shown.empty());
    return shown;
}

const auto Defaults = [](clsValidate&) {};

TEST(ValidateText, RulesAndTheirMessagesInOrder)
{
    const std::string blanks = "This field cannot contain ALL blanks\r\n";
    const std::string comma = "You cannot enter a comma in this field\r\n";
    const std::string single = "You cannot enter a single quote in this field\r\n";
    const std::string dbl = "You cannot enter a double quote in this field\r\n";
    const std::string minimum = "The value you entered is outside the minimum range allowed\r\n";
    const std::string maximum = "The value you entered is outside the maximum range allowed\r\n";
    const std::string numeric = "This field must be numeric\r\n";
    auto noBlanks = [](clsValidate& v) { v.AllowBlanks = false; };
    auto range1to5 = [](clsValidate& v) {
        v.LowRange = 1;
        v.HighRange = 5;
    };
    struct Row
    {
        const char* name;
        std::function<void(clsValidate&)> rules;
        std::optional<std::string> value;
        std::string expected;
    };
    const Row rows[] = {
        {"an empty value after Init", Defaults, "", ""},
        {"a null value after Init", Defaults, std::nullopt, ""},
        {"an empty value may be empty even when null is refused",
         [](clsValidate& v) {
             v.AllowNull = false;
             v.Numericonly = true;
         },
         "", ""},
        {"a null value refused", [](clsValidate& v) { v.AllowNull = false; }, std::nullopt,
         "This field cannot be left empty\r\n"},
        {"only blanks refused: just the first message", noBlanks, "   ", blanks},
        {"an empty value is all blanks too", noBlanks, "", blanks},
        {"a comma and too many characters in one window",
         [](clsValidate& v) { v.Maxlength = 3; }, "a,bcd",
         comma + "Maximum of 3 character(s) allowed\r\n"},
        {"Init refuses comma, single and double quote", Defaults, "a,b'c\"d", comma + single + dbl},
        {"quotes allowed when the form allows them",
         [](clsValidate& v) {
             v.AllowComma = true;
             v.AllowSingleQuote = true;
             v.AllowDoubleQuote = true;
         },
         "O'Meara, \"Hidden\"", ""},
        {"length counts characters, not bytes", [](clsValidate& v) { v.Maxlength = 6; },
         "Z\xC3\xBCrich", ""},
        {"one character over", [](clsValidate& v) { v.Maxlength = 5; }, "Z\xC3\xBCrich",
         "Maximum of 5 character(s) allowed\r\n"},
        {"range: below", range1to5, "0", minimum},
        {"range: the low end", range1to5, "1", ""},
        {"range: the high end", range1to5, "5", ""},
        {"range: above", range1to5, "5.5", maximum},
        {"range: a text is not compared",
         [](clsValidate& v) {
             v.LowRange = 1;
             v.HighRange = 5;
             v.Numericonly = true;
         },
         "abc", numeric},
        {"range 0 to 0 means no range test", Defaults, "-12", ""},
        {"range with only a high end", [](clsValidate& v) { v.HighRange = 10; }, "-1", minimum},
        {"integer: a text", [](clsValidate& v) { v.IntegerOnly = true; }, "two",
         "This field must be an integer\r\n"},
        {"integer: a decimal number passes", [](clsValidate& v) { v.IntegerOnly = true; },
         "2.5", ""},
        {"currency: two places", [](clsValidate& v) { v.ValidCurrency = true; }, "12.34", ""},
        {"currency: three places", [](clsValidate& v) { v.ValidCurrency = true; }, "12.345",
         "For currency fields, you can enter up to two decimal places\r\n"},
        {"list: one of the values", [](clsValidate& v) { v.ValidList = "Yes, No"; }, "No", ""},
        {"list: the case matters", [](clsValidate& v) { v.ValidList = "Yes,No"; }, "no",
         "The value you entered is not allowed.  Valid values are :Yes,No\r\n"},
        {"date: valid", [](clsValidate& v) { v.ValidDate = true; }, "02/29/2024", ""},
        {"date: no 29 February in 1900", [](clsValidate& v) { v.ValidDate = true; },
         "02/29/1900", "You have entered an invalid date\r\n"},
        {"numeric: two decimal points", [](clsValidate& v) { v.Numericonly = true; }, "4.5.1",
         numeric},
        {"all failures of one value, in order",
         [](clsValidate& v) {
             v.LowRange = 1;
             v.HighRange = 2;
             v.IntegerOnly = true;
             v.ValidCurrency = true;
             v.ValidList = "1,2";
             v.Maxlength = 4;
             v.Numericonly = true;
         },
         "3.141", maximum + "For currency fields, you can enter up to two decimal places\r\n" +
                      "The value you entered is not allowed.  Valid values are :1,2\r\n" +
                      "Maximum of 4 character(s) allowed\r\n"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(Validate(row.rules, row.value), row.expected);
    }
}

TEST(ValidateText, Times)
{
    const std::string hh = "The hour you have entered is invalid\r\n";
    const std::string mm = "The minutes you have entered are invalid\r\n";
    const std::string ss = "The seconds you have entered are invalid\r\n";
    const std::string shortForm = "You have entered an invalid time. Please enter like HH:MM\r\n";
    const std::string longForm =
        "You have entered an invalid time. Please enter like HH:MM:SS\r\n";
    const std::string invalid = "You have entered an invalid time\r\n";
    const struct
    {
        const char* value;
        std::string expected;
    } rows[] = {
        {"00:00", ""},
        {"23:59", ""},
        {"24:00", hh},
        {"12:60", mm},
        {"24:60", hh + mm},
        {"12.30", shortForm},
        {"23:59:59", ""},
        {"23:59:60", ss},
        {"25:61:99", hh + mm + ss},
        {"12:30.00", longForm},
        {"1230", invalid},
        {"9:30", invalid},
        {"12:30:0", invalid},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.value);
        EXPECT_EQ(Validate([](clsValidate& v) { v.ValidTime = true; }, row.value), row.expected);
    }
}

TEST(ValidateText, CommaDecimalSign)
{
    auto comma = [](clsValidate& v) {
        v.regional.decimalchar = ",";
        v.AllowComma = true;
        v.LowRange = 1;
        v.HighRange = 5;
        v.Numericonly = true;
    };
    // 4,5 is four and a half here: inside 1 to 5, and numeric.
    EXPECT_EQ(Validate(comma, "4,5"), "");
    EXPECT_EQ(Validate(comma, "5,5"),
              "The value you entered is outside the maximum range allowed\r\n");
    EXPECT_EQ(Validate(
                  [&](clsValidate& v) {
                      comma(v);
                      v.ValidCurrency = true;
                  },
                  "1,234"),
              "For currency fields, you can enter up to two decimal places\r\n");
}

TEST(ValidateText, WindowAndInit)
{
    Port ui;
    clsValidate v;
    v.Init();
    v.MessageKind = "E";
    v.Maxlength = 2;
    v.AllowComma = true;
    v.Numericonly = true;
    v.TextInput = "typed";
    v.CheckText = "abc";
    bool result = true;
    v.ValidateText(ui, result);
    EXPECT_FALSE(result);
    ASSERT_EQ(ui.shown.size(), 1u);
    EXPECT_EQ(ui.shown[0].message.ShortMessage, "Input Validation Error");
    EXPECT_EQ(ui.shown[0].message.kind, "E");
    EXPECT_EQ(ui.shown[0].message.Title, "System Error");

    // Init puts the rules back but keeps the window's kind; the value goes back to empty.
    v.Init();
    EXPECT_EQ(v.TextInput, "");
    EXPECT_EQ(v.CheckText, std::optional<std::string>(""));
    v.CheckText = "a,b";
    result = true;
    v.ValidateText(ui, result);
    EXPECT_FALSE(result);
    ASSERT_EQ(ui.shown.size(), 2u);
    EXPECT_EQ(ui.shown[1].Text(), "You cannot enter a comma in this field\r\n");
    EXPECT_EQ(ui.shown[1].message.kind, "E");
}

TEST(ValidateComboBox, FindsTheTypedTextWithoutRegardToCase)
{
    Port ui;
    clsValidate v;
    v.Init();
    v.SetCombo = {"Visual", "CCD", "\xC3\x84quatorial"}; // "Äquatorial"
    bool result = false;
    for (const char* typed : {"visual", "CCD", "\xC3\xA4QUATORIAL"}) {
        SCOPED_TRACE(typed);
        v.TextInput = typed;
        result = false;
        v.ValidateComboBox(ui, result);
        EXPECT_TRUE(result);
    }
    EXPECT_TRUE(ui.shown.empty());

    for (const char* typed : {"Visua", "Visual ", ""}) {
        SCOPED_TRACE(typed);
        v.TextInput = typed;
        result = true;
        v.ValidateComboBox(ui, result);
        EXPECT_FALSE(result);
    }
    ASSERT_EQ(ui.shown.size(), 3u);
    EXPECT_EQ(ui.shown[0].Text(), "You have entered a value that's not in the list");
    EXPECT_EQ(ui.shown[0].message.ShortMessage, "Invalid Entry");
    EXPECT_EQ(ui.shown[0].message.kind, "E");

    v.SetCombo.clear();
    v.TextInput = "Visual";
    result = true;
    v.ValidateComboBox(ui, result);
    EXPECT_FALSE(result);
}

} // namespace
