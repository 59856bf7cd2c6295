#pragma once
// clsValidate: the test of one typed value against the rules an entry form sets for a field,
// at the moment the field is left. A form calls Init, sets the rules the field needs, puts the
// value in CheckText and calls ValidateText; for a combo box it puts the typed text in TextInput
// and the box's entries in SetCombo and calls ValidateComboBox. The class knows nothing of forms.
//
// Texts are UTF-8; lengths and character positions count characters (code points), not bytes.
// Numbers typed by the user follow the regional decimal sign held in `regional`.

#include "services/Vb.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace services {

class UiPort;

inline constexpr const char* ValidationTitle = "Input Validation Error";

class clsValidate
{
public:
    // The rules, in the order of the table of rules; Init gives the defaults written here.
    bool ValidDate = false;
    bool IntegerOnly = false;
    bool ValidCurrency = false;
    // The value under test; nullopt is a null value, an empty text is an empty value.
    std::optional<std::string> CheckText = std::string();
    bool AllowBlanks = true;
    bool AllowComma = false;
    bool AllowSingleQuote = false;
    bool AllowDoubleQuote = false;
    bool ValidTime = false;
    bool AllowNull = true;
    double LowRange = 0;
    double HighRange = 0;
    std::string ValidList; // the allowed values, separated by commas; empty: any value
    std::int16_t Maxlength = 0; // most characters allowed; 0: no limit
    bool Numericonly = false;

    // What ValidateComboBox tests: the typed text and the entries of the combo box.
    std::string TextInput;
    std::vector<std::string> SetCombo;

    // The kind of the message window ValidateText shows ("U": a data entry error).
    std::string MessageKind = "U";
    // The regional formats typed numbers and dates follow. Init leaves it as it is.
    vb::Regional regional;

    // Every rule back to its default, and TextInput cleared.
    void Init();

    // Tests CheckText against every rule. Every failed test adds its message and CR LF to one
    // text, shown once through ShowMessage(text, "Input Validation Error", MessageKind).
    // Returned: result, true when no test failed.
    // Notes: an empty value passes when AllowBlanks has not refused it; a null value passes
    //   when AllowNull allows it. The range test applies when LowRange and HighRange are not
    //   both 0, and only to a numeric value.
    void ValidateText(UiPort& ui, bool& result);

    // Looks for TextInput among the SetCombo entries, without regard to case.
    // Returned: result, true on the first match; otherwise the message "You have entered a
    //   value that's not in the list", "Invalid Entry", kind "E", and false.
    void ValidateComboBox(UiPort& ui, bool& result);
};

} // namespace services
