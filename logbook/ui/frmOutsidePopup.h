#pragma once
// The list popup of the outside window: one list, picked with the arrow keys and Enter; Esc
// closes it without a choice. The row equal to the field's present text comes preselected.

#include "logbook/OutsideForm.h"

#include <QDialog>

#include <optional>
#include <string>

class QListWidget;

namespace logbook::ui {

class frmOutsidePopup : public QDialog
{
public:
    frmOutsidePopup(const std::string& caption, const logbook::OutsidePopupList& list,
                    QWidget* parent = nullptr);

    QListWidget* List1 = nullptr;
    // The row chosen with Enter; nothing before that or after Esc.
    std::optional<std::string> Choice() const { return choice_; }

    // Shows the popup of a list button modally and returns the row chosen.
    static std::optional<std::string> Pick(QWidget* parent, logbook::LogContext& context,
                                           const logbook::OutsideButton& button,
                                           const std::string& present);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    std::optional<std::string> choice_;
};

} // namespace logbook::ui
