#include "logbook/ui/frmOutsidePopup.h"

#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QVBoxLayout>

namespace logbook::ui {

frmOutsidePopup::frmOutsidePopup(const std::string& caption, const logbook::OutsidePopupList& list,
                                 QWidget* parent)
    : QDialog(parent)
{
    setObjectName("frmOutsidePopup");
    setWindowTitle(QString::fromStdString(caption));
    auto* layout = new QVBoxLayout(this);
    auto* help =
        new QLabel("<b>" + QString::fromStdString(caption).toHtmlEscaped() +
                       "</b>&nbsp;&nbsp;&nbsp;ENTER = choose&nbsp;&nbsp;&nbsp;ESC = cancel",
                   this);
    List1 = new QListWidget(this);
    List1->setObjectName("List1");
    for (const std::string& row : list.rows)
        List1->addItem(QString::fromStdString(row));
    List1->setCurrentRow(list.selected >= 0 ? list.selected : 0);
    List1->installEventFilter(this);
    layout->addWidget(help);
    layout->addWidget(List1);
    resize(320, 360);
    List1->setFocus();
}

bool frmOutsidePopup::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == List1 && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            if (QListWidgetItem* item = List1->currentItem()) {
                choice_ = item->text().toStdString();
                accept();
            }
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

std::optional<std::string> frmOutsidePopup::Pick(QWidget* parent, logbook::LogContext& context,
                                                 const logbook::OutsideButton& button,
                                                 const std::string& present)
{
    frmOutsidePopup popup(button.caption, logbook::LoadOutsidePopup(context, button.key, present),
                          parent);
    popup.exec();
    return popup.Choice();
}

} // namespace logbook::ui
