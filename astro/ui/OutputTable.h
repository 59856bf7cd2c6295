#pragma once
// The body of the Sun and Moon windows: rows of a caption and a value that can be selected and
// copied, in titled groups, and the Goto button that sends the body to the telescope.

#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QString>

#include <string>
#include <vector>

namespace services {
class UiPort;
}

namespace astro::ui {

class OutputGroup : public QGroupBox
{
public:
    OutputGroup(const QString& title, QWidget* parent);
    // A row: the caption and a value label named objectName, which is returned.
    QLabel* AddRow(const QString& caption, const QString& objectName);

private:
    QGridLayout* grid_;
};

inline void SetText(QLabel* label, const std::string& text)
{
    label->setText(QString::fromStdString(text));
}

// What cmdGoto says while no telescope link exists.
void TelescopeNotConnected(services::UiPort& ui);

} // namespace astro::ui
