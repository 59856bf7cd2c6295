#include "logbook/ui/frmOutsideMain.h"

#include "logbook/ui/frmLogEntryNew.h"
#include "logbook/ui/frmOutsidePopup.h"

#include <QCheckBox>
#include <QFocusEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabBar>
#include <QTabWidget>
#include <QTableWidget>
#include <QTextEdit>
#include <QTimer>
#include <QVBoxLayout>

namespace logbook::ui {

namespace {

using logbook::LogField;
using logbook::OutsideButton;
using logbook::OutsideControl;

// The caption in front of a control that has no list button.
const char* Caption(const char* control)
{
    static const std::map<std::string, const char*> captions{
        {"txtObjectID", "Object ID"},
        {"txtdate", "Date"},
        {"txttime", "Time"},
        {"txtshortnotes", "Short Notes"},
        {"RichTextBox2", "Notes"},
        {"txtimgname", "Image Name"},
        {"txtExpTime", "Exposure Time"},
        {"txtFocDis", "Focal Distance"},
        {"txtFov", "Field Of View"},
        {"txtCrate", "Cooling Rate"},
        {"txtRating2", "Picture Rating"},
        {"chkdframe", "Dark Frame"},
        {"chkFfield", "Flat Field"},
        {"rchNotesccd", "Notes"},
        {"RichTextBox3", "Session Notes"},
    };
    const auto found = captions.find(control);
    return found == captions.end() ? "" : found->second;
}

const OutsideButton* ButtonFor(const char* control)
{
    for (const OutsideButton& b : logbook::OutsideButtons())
        if (std::string(b.control) == control)
            return &b;
    return nullptr;
}

bool IsCheck(const OutsideControl& c)
{
    return c.field == LogField::chkdframe || c.field == LogField::chkFfield;
}

bool IsRich(const OutsideControl& c)
{
    return logbook::NameOf(c.field).kind == logbook::FieldKind::Rich;
}

} // namespace

frmOutsideMain::frmOutsideMain(logbook::LogContext& context, data::SettingsStore& settings,
                               QWidget* parent)
    : QWidget(parent, Qt::Window), ctx_(context), form_(context, settings)
{
    setObjectName("frmOutsideMain");
    setWindowTitle("Outside");

    tabs = new QTabWidget(this);
    tabs->setObjectName("SSTab1");
    for (int tab = 0; tab < static_cast<int>(logbook::OutsideTabCaptions.size()); ++tab)
        tabs->addTab(BuildTab(tab), logbook::OutsideTabCaptions[static_cast<std::size_t>(tab)]);
    lblKeys = new QLabel(logbook::OutsideKeysLabel, tabs);
    lblKeys->setObjectName("lblKeys");
    tabs->setCornerWidget(lblKeys, Qt::TopRightCorner);
    // The tabs change only by the window's keys; the tab bar itself takes no focus.
    tabs->tabBar()->setFocusPolicy(Qt::NoFocus);
    connect(tabs, &QTabWidget::currentChanged, this, [this](int index) {
        if (!running_)
            form_.tab = index;
    });

    vaSpread1 = new QTableWidget(0, logbook::kOutsideCols, this);
    vaSpread1->setObjectName("vaSpread1");
    QStringList captions;
    for (const char* caption : logbook::OutsideGridCaptions)
        captions << caption;
    vaSpread1->setHorizontalHeaderLabels(captions);
    vaSpread1->setEditTriggers(QAbstractItemView::NoEditTriggers);
    vaSpread1->setSelectionBehavior(QAbstractItemView::SelectRows);
    vaSpread1->setSelectionMode(QAbstractItemView::SingleSelection);
    vaSpread1->setTabKeyNavigation(false);
    vaSpread1->verticalHeader()->setVisible(false);
    vaSpread1->horizontalHeader()->setStretchLastSection(true);
    vaSpread1->installEventFilter(this);
    vaSpread1->setMinimumWidth(400);

    txtObs = new QLineEdit(this);
    txtObs->setObjectName("txtObs");
    txtObs->setReadOnly(true);
    txtObs->setFocusPolicy(Qt::NoFocus);
    txtObs->setMaximumWidth(90);

    auto* side = new QVBoxLayout;
    auto* number = new QHBoxLayout;
    number->addWidget(new QLabel("Obs #", this));
    number->addWidget(txtObs);
    number->addStretch();
    side->addLayout(number);
    side->addWidget(vaSpread1);
    auto* layout = new QHBoxLayout(this);
    layout->addWidget(tabs, 3);
    layout->addLayout(side, 2);
    resize(1100, 560);
}

QWidget* frmOutsideMain::BuildTab(int tab)
{
    auto* page = new QWidget(this);
    auto* grid = new QGridLayout(page);
    int row = 0;
    QWidget* previous = nullptr;
    auto chain = [&](QWidget* w) {
        if (previous)
            setTabOrder(previous, w);
        previous = w;
    };
    for (const OutsideControl& c : logbook::OutsideControls()) {
        if (c.tab != tab)
            continue;
        if (const OutsideButton* b = ButtonFor(c.name)) {
            auto* button = new QPushButton(b->caption, page);
            button->setObjectName(QString("cmd") + b->key);
            button->setAutoDefault(false);
            button->setFocusPolicy(Qt::StrongFocus);
            button->installEventFilter(this);
            buttonOf_[button] = b;
            grid->addWidget(button, row, 0);
            chain(button);
        } else if (!IsCheck(c)) {
            grid->addWidget(new QLabel(Caption(c.name), page), row, 0);
        }
        QWidget* widget = nullptr;
        if (IsCheck(c)) {
            widget = new QCheckBox(Caption(c.name), page);
        } else if (IsRich(c)) {
            auto* box = new QTextEdit(page);
            box->setTabChangesFocus(true);
            widget = box;
        } else {
            widget = new QLineEdit(page);
        }
        widget->setObjectName(c.name);
        widget->installEventFilter(this);
        widgets_[c.name] = widget;
        controlOf_[widget] = &c;
        grid->addWidget(widget, row, 1);
        if (IsRich(c)) {
            grid->setRowStretch(row, 1);
            auto* help = new QLabel(logbook::RichTextHelp, page);
            grid->addWidget(help, ++row, 1);
        }
        chain(widget);
        ++row;
    }
    return page;
}

QWidget* frmOutsideMain::Control(const std::string& name) const
{
    const auto found = widgets_.find(name);
    return found == widgets_.end() ? nullptr : found->second;
}

QPushButton* frmOutsideMain::Button(const std::string& caption) const
{
    for (const auto& [object, button] : buttonOf_)
        if (caption == button->caption)
            return static_cast<QPushButton*>(object);
    return nullptr;
}

void frmOutsideMain::Open(long long OBSN)
{
    running_ = true;
    form_.OBSN = OBSN;
    form_.Form_Load();
    ShowModel();
    running_ = false;
    show();
    raise();
    activateWindow();
    FocusControl("txtObjectID");
}

// ---------------------------------------------------------------------------------------------

void frmOutsideMain::ReadWidgets()
{
    for (const OutsideControl& c : logbook::OutsideControls()) {
        QWidget* widget = widgets_.at(c.name);
        std::string value;
        if (auto* check = qobject_cast<QCheckBox*>(widget)) {
            value = check->isChecked() ? "True" : "False";
        } else if (auto* box = qobject_cast<QTextEdit*>(widget)) {
            // A rich box is read back only when it was edited, so that the stored marking-up
            // is not rewritten by merely showing it.
            if (!box->document()->isModified())
                continue;
            value = box->toPlainText().trimmed().isEmpty() ? std::string()
                                                           : box->toHtml().toStdString();
            box->setProperty("shown", QString::fromStdString(value));
            box->document()->setModified(false);
        } else {
            value = static_cast<QLineEdit*>(widget)->text().toStdString();
        }
        form_.SetText(c, value);
    }
}

void frmOutsideMain::ShowModel()
{
    for (const OutsideControl& c : logbook::OutsideControls()) {
        QWidget* widget = widgets_.at(c.name);
        const QString value = QString::fromStdString(form_.Text(c));
        const QSignalBlocker blocker(widget);
        if (auto* check = qobject_cast<QCheckBox*>(widget)) {
            check->setChecked(value == "True");
        } else if (auto* box = qobject_cast<QTextEdit*>(widget)) {
            if (box->property("shown").toString() != value) {
                if (Qt::mightBeRichText(value))
                    box->setHtml(value);
                else
                    box->setPlainText(value);
                box->setProperty("shown", value);
                box->document()->setModified(false);
            }
        } else {
            auto* line = static_cast<QLineEdit*>(widget);
            if (line->text() != value)
                line->setText(value);
        }
    }
    txtObs->setText(QString::fromStdString(form_.entry.lblObNo));

    const int rows = static_cast<int>(form_.vaSpread1.size());
    vaSpread1->setRowCount(rows);
    for (int r = 0; r < rows; ++r)
        for (int col = 0; col < logbook::kOutsideCols; ++col)
            vaSpread1->setItem(
                r, col,
                new QTableWidgetItem(QString::fromStdString(
                    form_.vaSpread1[static_cast<std::size_t>(r)][static_cast<std::size_t>(col)])));
    vaSpread1->resizeColumnsToContents();
    if (tabs->currentIndex() != form_.tab) {
        const QSignalBlocker blocker(tabs);
        tabs->setCurrentIndex(form_.tab);
    }
}

void frmOutsideMain::FocusControl(const char* name)
{
    if (QWidget* widget = Control(name))
        widget->setFocus(Qt::OtherFocusReason);
}

// ---------------------------------------------------------------------------------------------

bool frmOutsideMain::OwnsKey(int key) const
{
    if (key == Qt::Key_1 || key == Qt::Key_2 || key == Qt::Key_3 || key == Qt::Key_A ||
        key == Qt::Key_U)
        return true;
    return form_.tab == 0 && (key == Qt::Key_C || key == Qt::Key_D || key == Qt::Key_G);
}

void frmOutsideMain::Key(int key)
{
    running_ = true;
    ReadWidgets();
    const logbook::OutsideKey done = form_.KeyDown(key);
    ShowModel();
    running_ = false;
    switch (done) {
    case logbook::OutsideKey::Tab:
        for (const OutsideControl& c : logbook::OutsideControls())
            if (c.tab == form_.tab) {
                const OutsideButton* b = ButtonFor(c.name);
                (b ? static_cast<QWidget*>(Button(b->caption)) : widgets_.at(c.name))
                    ->setFocus(Qt::OtherFocusReason);
                break;
            }
        break;
    case logbook::OutsideKey::Add:
        // The next observation starts at the object id, whichever tab the add came from.
        form_.tab = 0;
        tabs->setCurrentIndex(0);
        FocusControl("txtObjectID");
        break;
    case logbook::OutsideKey::Clear:
    case logbook::OutsideKey::Delete:
        FocusControl("txtObjectID");
        break;
    case logbook::OutsideKey::Grid:
        vaSpread1->setFocus(Qt::OtherFocusReason);
        if (vaSpread1->rowCount() > 0)
            vaSpread1->setCurrentCell(0, 0);
        break;
    default:
        break;
    }
}

void frmOutsideMain::PickFor(const OutsideButton& button)
{
    const OutsideControl* target = logbook::FindOutsideControl(button.control);
    ReadWidgets();
    const auto choice = frmOutsidePopup::Pick(this, ctx_, button, form_.Text(*target));
    if (choice) {
        form_.SetText(*target, *choice);
        running_ = true;
        ShowModel();
        running_ = false;
    }
    // The window takes the keyboard back from the closed popup.
    activateWindow();
    if (choice)
        FocusControl(target->name);
    else
        Button(button.caption)->setFocus(Qt::OtherFocusReason);
}

void frmOutsideMain::Leave(QWidget* widget, const OutsideControl& control)
{
    running_ = true;
    ReadWidgets();
    const bool kept = form_.LostFocus(control);
    ShowModel();
    running_ = false;
    if (!kept)
        QTimer::singleShot(0, widget, [widget] { widget->setFocus(Qt::OtherFocusReason); });
}

bool frmOutsideMain::eventFilter(QObject* watched, QEvent* event)
{
    const QEvent::Type type = event->type();
    if (type == QEvent::ShortcutOverride || type == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->modifiers() == Qt::ControlModifier && OwnsKey(key->key())) {
            // The window's keys come before the line fields' own (Ctrl+A selects all). A rich
            // box keeps its formatting key beside them: Ctrl+U underlines there and updates.
            if (auto* box = qobject_cast<QTextEdit*>(watched))
                frmLogEntryNew::RichKey(*box, event, this);
            event->accept();
            if (type == QEvent::KeyPress && !running_)
                Key(key->key());
            return true;
        }
        if (auto* box = qobject_cast<QTextEdit*>(watched))
            if (frmLogEntryNew::RichKey(*box, event, this))
                return true;
        const bool enter = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
        if (type == QEvent::KeyPress && enter && key->modifiers() == Qt::NoModifier) {
            if (const auto found = buttonOf_.find(watched); found != buttonOf_.end()) {
                PickFor(*found->second);
                return true;
            }
            if (watched == vaSpread1 && vaSpread1->currentRow() >= 0) {
                running_ = true;
                form_.GridEnter(vaSpread1->currentRow() + 1);
                ShowModel();
                running_ = false;
                FocusControl("txtObjectID");
                return true;
            }
        }
    }
    if (type == QEvent::FocusOut && !running_) {
        const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
        const auto found = controlOf_.find(watched);
        if (found != controlOf_.end() && reason != Qt::ActiveWindowFocusReason &&
            reason != Qt::PopupFocusReason)
            Leave(static_cast<QWidget*>(watched), *found->second);
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace logbook::ui
