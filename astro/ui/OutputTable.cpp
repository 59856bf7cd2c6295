#include "astro/ui/OutputTable.h"

#include "services/UiPort.h"

namespace astro::ui {

OutputGroup::OutputGroup(const QString& title, QWidget* parent)
    : QGroupBox(title, parent), grid_(new QGridLayout(this))
{
    grid_->setColumnStretch(1, 1);
    grid_->setHorizontalSpacing(16);
}

QLabel* OutputGroup::AddRow(const QString& caption, const QString& objectName)
{
    const int row = grid_->rowCount();
    grid_->addWidget(new QLabel(caption, this), row, 0);
    auto* value = new QLabel(this);
    value->setObjectName(objectName);
    value->setTextInteractionFlags(Qt::TextSelectableByMouse);
    grid_->addWidget(value, row, 1);
    return value;
}

void TelescopeNotConnected(services::UiPort& ui)
{
    ui.ShowMessage("Could not find telescope attached.  Please check to make sure the cable "
                   "between the scope and the computer are connected and that you have selected "
                   "the proper scope driver in preferences",
                   "Attention!", "I");
}

void GotoShown(const TelescopeGoto& telescopeGoto, services::UiPort& ui, double raHours,
               double decDeg)
{
    if (!telescopeGoto) {
        TelescopeNotConnected(ui);
        return;
    }
    const Sexagesimal ra = ConvertFromDecimal(raHours);
    telescopeGoto(Hms{ra.degrees, ra.minutes, ra.seconds}, SignPush(ConvertFromDecimal(decDeg)));
}

} // namespace astro::ui
