#include "charts/ui/frmGotoCon.h"

#include "data/ObjectFilter.h"

#include <QLabel>
#include <QListWidget>
#include <QVBoxLayout>

namespace charts::ui {

frmGotoCon::frmGotoCon(std::function<void(const std::string& entry)> clicked, QWidget* parent)
    : QDialog(parent), clicked_(std::move(clicked))
{
    setWindowTitle(tr("Go to Constellation"));
    auto* layout = new QVBoxLayout(this);
    cboCon = new QListWidget(this);
    cboCon->setObjectName("cboCon");
    for (const std::string& entry : data::ConstellationList())
        cboCon->addItem(QString::fromStdString(entry));
    layout->addWidget(cboCon, 1);
    Label1 = new QLabel(
        tr("Select a constellation from the list above to go to that constellation."), this);
    Label1->setWordWrap(true);
    layout->addWidget(Label1);
    connect(cboCon, &QListWidget::itemClicked, this, [this](QListWidgetItem* item) {
        if (clicked_)
            clicked_(item->text().toStdString());
    });
    resize(300, 420);
}

} // namespace charts::ui
