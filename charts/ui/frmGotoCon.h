#pragma once
// The constellation chooser of "Go to Constellation": a click on an entry of cboCon charts that
// constellation.

#include <QDialog>

#include <functional>
#include <string>

class QLabel;
class QListWidget;

namespace charts::ui {

class frmGotoCon : public QDialog
{
public:
    // Given: clicked, called with the entry clicked ("Ori-Orion").
    explicit frmGotoCon(std::function<void(const std::string& entry)> clicked,
                        QWidget* parent = nullptr);

    QListWidget* cboCon = nullptr;
    QLabel* Label1 = nullptr;

private:
    std::function<void(const std::string&)> clicked_;
};

} // namespace charts::ui
