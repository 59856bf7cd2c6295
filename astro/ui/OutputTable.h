#pragma once
// The body of the Sun and Moon windows: rows of a caption and a value that can be selected and
// copied, in titled groups, and the Goto button that sends the body to the telescope.

#include "astro/Time.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QString>

#include <functional>
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

// The telescope's goto as the Goto buttons reach it, given the body's right ascension and
// declination as the window shows them. The program gives one that says TelescopeNotConnected's
// message itself while the telescope is not enabled.
using TelescopeGoto = std::function<void(const Hms& ra, const Dms& dec)>;

// cmdGoto: the goto to a position (raHours decimal hours, decDeg decimal degrees), or
// TelescopeNotConnected when no goto was given.
void GotoShown(const TelescopeGoto& telescopeGoto, services::UiPort& ui, double raHours,
               double decDeg);

} // namespace astro::ui
