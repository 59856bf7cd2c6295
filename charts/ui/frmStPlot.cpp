#include "charts/ui/frmStPlot.h"

#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace charts::ui {

namespace {

QString Q(const std::string& text)
{
    return QString::fromStdString(text);
}

} // namespace

frmStPlot::frmStPlot(services::UiPort& ui, std::function<void(charts::frmStPlot&)> chart,
                     QWidget* parent)
    : QDialog(parent), model(ui), chart_(std::move(chart))
{
    setWindowTitle(tr("Plot"));
    auto* layout = new QVBoxLayout(this);

    auto* top = new QGridLayout;
    txtFov = new QLineEdit(this);
    txtObjName = new QLineEdit(this);
    cboType = new QComboBox(this);
    for (const std::string& type : PlotTypes)
        cboType->addItem(Q(type));
    top->addWidget(new QLabel(tr("Field of view"), this), 0, 0);
    top->addWidget(txtFov, 0, 1);
    top->addWidget(new QLabel(tr("Object name"), this), 1, 0);
    top->addWidget(txtObjName, 1, 1);
    top->addWidget(new QLabel(tr("Type"), this), 2, 0);
    top->addWidget(cboType, 2, 1);
    layout->addLayout(top);

    auto* rows = new QGridLayout;
    const char* captions[] = {"RA h", "m", "s", "Dec d", "m", "s"};
    for (int c = 0; c < 6; ++c)
        rows->addWidget(new QLabel(tr(captions[c]), this), 0, c);
    for (std::size_t i = 0; i < fields.size(); ++i) {
        fields[i] = new QLineEdit(this);
        const int row = i < 6 ? 1 : 2;
        // Row 2 has no seconds fields: hours, minutes, degrees, minutes.
        const int column = i < 6 ? static_cast<int>(i) : (i - 6 < 2 ? int(i - 6) : int(i - 5));
        rows->addWidget(fields[i], row, column);
        const auto field = static_cast<PlotField>(i);
        connect(fields[i], &QLineEdit::editingFinished, this, [this, field, i] {
            model.Field(field) = fields[i]->text().toStdString();
            if (!model.LeaveField(field)) {
                fields[i]->setText(Q(model.Field(field)));
                fields[i]->setFocus();
            }
        });
    }
    txtName = new QLineEdit(this);
    rows->addWidget(new QLabel(tr("Name"), this), 3, 0);
    rows->addWidget(txtName, 3, 1, 1, 5);
    layout->addLayout(rows);

    List1 = new QListWidget(this);
    List1->setFont(QFont("Monospace"));
    layout->addWidget(List1);
    connect(List1, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row < 0)
            return;
        ToModel();
        model.List1_Click(static_cast<std::size_t>(row));
        FromModel();
    });

    auto* buttons = new QHBoxLayout;
    Command1 = new QPushButton(tr("Add"), this);
    SSCommand2 = new QPushButton(tr("Save"), this);
    SSCommand3 = new QPushButton(tr("Open"), this);
    SSCommand4 = new QPushButton(tr("Chart"), this);
    for (QPushButton* button : {Command1, SSCommand2, SSCommand3, SSCommand4})
        buttons->addWidget(button);
    layout->addLayout(buttons);

    auto run = [this](auto action) {
        return [this, action] {
            ToModel();
            action();
            FromModel();
        };
    };
    connect(Command1, &QPushButton::clicked, this, run([this] { model.Command1_Click(); }));
    connect(SSCommand2, &QPushButton::clicked, this, run([this] { model.SSCommand2_Click(); }));
    connect(SSCommand3, &QPushButton::clicked, this, run([this] { model.SSCommand3_Click(); }));
    connect(SSCommand4, &QPushButton::clicked, this, run([this] {
                if (chart_)
                    chart_(model);
            }));
}

void frmStPlot::ToModel()
{
    model.txtFov = txtFov->text().toStdString();
    model.txtObjName = txtObjName->text().toStdString();
    model.txtName = txtName->text().toStdString();
    model.cboType = cboType->currentIndex();
    for (std::size_t i = 0; i < fields.size(); ++i)
        model.Field(static_cast<PlotField>(i)) = fields[i]->text().toStdString();
}

void frmStPlot::FromModel()
{
    const QSignalBlocker blockList(List1);
    txtFov->setText(Q(model.txtFov));
    txtObjName->setText(Q(model.txtObjName));
    txtName->setText(Q(model.txtName));
    for (std::size_t i = 0; i < fields.size(); ++i) {
        fields[i]->setText(Q(model.Field(static_cast<PlotField>(i))));
        if (model.focus == &model.Field(static_cast<PlotField>(i)))
            fields[i]->setFocus();
    }
    model.focus = nullptr;
    const int current = List1->currentRow();
    List1->clear();
    for (const std::string& entry : model.List1)
        List1->addItem(Q(entry));
    List1->setCurrentRow(current < List1->count() ? current : -1);
}

} // namespace charts::ui
