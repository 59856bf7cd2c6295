#include "services/Validate.h"

#include "services/UiPort.h"

#include <QString>

#include <algorithm>

namespace services {

namespace {

// The characters (code points) of a UTF-8 text.
std::u32string Characters(const std::string& text)
{
    const QList<uint> ucs4 = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()))
                                 .toUcs4();
    return std::u32string(ucs4.begin(), ucs4.end());
}

// The value of characters [first, first + count) read as Val reads a number.
double ValueOf(const std::u32string& chars, size_t first, size_t count)
{
    std::string ascii;
    for (size_t i = first; i < first + count && i < chars.size(); ++i)
        ascii += chars[i] < 0x80 ? static_cast<char>(chars[i]) : '?';
    return vb::Val(ascii);
}

// A number typed by the user: the regional decimal sign, the other one of "," and "." as the
// thousands separator.
double TypedNumber(const std::string& text, const vb::Regional& regional)
{
    const char point = regional.decimalchar.empty() ? '.' : regional.decimalchar[0];
    const char group = point == ',' ? '.' : ',';
    std::string plain;
    for (char c : text) {
        if (c == group)
            continue;
        plain += c == point ? '.' : c;
    }
    return vb::Val(plain);
}

std::string Trimmed(const std::string& text)
{
    const size_t first = text.find_first_not_of(' ');
    if (first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

} // namespace

void clsValidate::Init()
{
    ValidDate = false;
    IntegerOnly = false;
    ValidCurrency = false;
    CheckText = std::string();
    AllowBlanks = true;
    AllowComma = false;
    AllowSingleQuote = false;
    AllowDoubleQuote = false;
    ValidTime = false;
    AllowNull = true;
    LowRange = 0;
    HighRange = 0;
    ValidList.clear();
    Maxlength = 0;
    Numericonly = false;
    TextInput.clear();
}

void clsValidate::ValidateText(UiPort& ui, bool& result)
{
    std::string messages;
    auto add = [&messages](const std::string& message) { messages += message + "\r\n"; };

    const bool isNull = !CheckText.has_value();
    const std::string value = CheckText.value_or(std::string());

    if (!AllowBlanks && !isNull && Trimmed(value).empty())
        add("This field cannot contain ALL blanks");

    const bool skipRest = messages.empty() && !isNull && value.empty();
    if (!skipRest) {
        if (!AllowNull && isNull)
            add("This field cannot be left empty");
    }
    // The remaining tests are tests of a text; a null value has none.
    if (!skipRest && !isNull) {
        const std::u32string chars = Characters(value);
        const bool numeric = vb::IsNumeric(value, regional);

        if ((LowRange != 0 || HighRange != 0) && numeric) {
            const double number = TypedNumber(value, regional);
            if (number < LowRange)
                add("The value you entered is outside the minimum range allowed");
            if (number > HighRange)
                add("The value you entered is outside the maximum range allowed");
        }

        // Deliberate: this test asks only for a number, so "2.5" passes it as it always has.
        if (IntegerOnly && !numeric)
            add("This field must be an integer");

        if (ValidCurrency) {
            const std::u32string point =
                Characters(regional.decimalchar.empty() ? std::string(".") : regional.decimalchar);
            const size_t at = chars.find(point.substr(0, 1));
            if (at != std::u32string::npos && chars.size() - at - 1 > 2)
                add("For currency fields, you can enter up to two decimal places");
        }

        if (!ValidList.empty()) {
            bool found = false;
            size_t start = 0;
            for (;;) {
                const size_t comma = ValidList.find(',', start);
                if (Trimmed(ValidList.substr(start, comma - start)) == value)
                    found = true;
                if (comma == std::string::npos)
                    break;
                start = comma + 1;
            }
            if (!found)
                add("The value you entered is not allowed.  Valid values are :" + ValidList);
        }

        if (ValidDate && !vb::IsDate(value, regional))
            add("You have entered an invalid date");

        if (ValidTime) {
            auto hourAndMinutes = [&] {
                if (ValueOf(chars, 0, 2) > 23)
                    add("The hour you have entered is invalid");
                if (ValueOf(chars, 3, 2) > 59)
                    add("The minutes you have entered are invalid");
            };
            if (chars.size() == 5) {
                if (chars[2] != U':')
                    add("You have entered an invalid time. Please enter like HH:MM");
                hourAndMinutes();
            } else if (chars.size() == 8) {
                if (chars[2] != U':' || chars[5] != U':')
                    add("You have entered an invalid time. Please enter like HH:MM:SS");
                hourAndMinutes();
                if (ValueOf(chars, 6, 2) > 59)
                    add("The seconds you have entered are invalid");
            } else {
                add("You have entered an invalid time");
            }
        }

        if (!AllowComma && value.find(',') != std::string::npos)
            add("You cannot enter a comma in this field");
        if (!AllowSingleQuote && value.find('\'') != std::string::npos)
            add("You cannot enter a single quote in this field");
        if (!AllowDoubleQuote && value.find('"') != std::string::npos)
            add("You cannot enter a double quote in this field");

        if (Maxlength > 0 && chars.size() > static_cast<size_t>(Maxlength))
            add("Maximum of " + std::to_string(Maxlength) + " character(s) allowed");

        if (Numericonly && !numeric)
            add("This field must be numeric");
    }

    if (!messages.empty()) {
        ui.ShowMessage(messages, ValidationTitle, MessageKind);
        result = false;
    } else {
        result = true;
    }
}

void clsValidate::ValidateComboBox(UiPort& ui, bool& result)
{
    const QString typed = QString::fromUtf8(TextInput.data(),
                                            static_cast<qsizetype>(TextInput.size()));
    result = std::any_of(SetCombo.begin(), SetCombo.end(), [&typed](const std::string& entry) {
        return QString::fromUtf8(entry.data(), static_cast<qsizetype>(entry.size()))
                   .compare(typed, Qt::CaseInsensitive) == 0;
    });
    if (!result)
        ui.ShowMessage("You have entered a value that's not in the list", "Invalid Entry", "E");
}

} // namespace services
