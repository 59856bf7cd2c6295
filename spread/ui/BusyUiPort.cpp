#include "spread/ui/BusyUiPort.h"

#include <algorithm>

#include <QApplication>
#include <QLabel>
#include <QMouseEvent>
#include <QProgressBar>
#include <QVBoxLayout>

namespace spread {

BusyTexts BusyTextsFor(services::BusyKind kind)
{
    switch (kind) {
    case services::BusyKind::Loading:
        return {"Loading Objects - Click *Here to Stop*", "Please Wait ..."};
    case services::BusyKind::Printing:
        return {"Printing - Click *Here to Stop*", "Please Wait ..."};
    case services::BusyKind::Saving:
        return {"Saving", "Please Wait ..."};
    case services::BusyKind::Working:
        break;
    }
    return {"Working - Click *Here to Stop*", "Please Wait ..."};
}

frmMessage::frmMessage()
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint)
{
    setObjectName("frmMessage");
    setAttribute(Qt::WA_ShowWithoutActivating);
    auto* layout = new QVBoxLayout(this);
    lblHeading_ = new QLabel(this);
    lblHeading_->setObjectName("lblHeading");
    QFont bold = lblHeading_->font();
    bold.setBold(true);
    bold.setPointSizeF(bold.pointSizeF() * 1.2);
    lblHeading_->setFont(bold);
    lblDetail_ = new QLabel(this);
    lblDetail_->setObjectName("lblDetail");
    layout->addWidget(lblHeading_);
    layout->addWidget(lblDetail_);
    setAutoFillBackground(true);
    setStyleSheet("#frmMessage { border: 2px solid palette(dark); }");
}

void frmMessage::SetTexts(const BusyTexts& texts)
{
    lblHeading_->setText(QString::fromUtf8(texts.heading));
    lblDetail_->setText(QString::fromUtf8(texts.detail));
    adjustSize();
}

void frmMessage::mousePressEvent(QMouseEvent* event)
{
    clicked_ = true;
    event->accept();
}

BusyUiPort::BusyUiPort(QWidget* mainWindow) : QtUiPort(mainWindow), message_(new frmMessage)
{
    SetMainWindow(mainWindow);
}

BusyUiPort::~BusyUiPort()
{
    delete message_;
}

void BusyUiPort::SetMainWindow(QWidget* mainWindow)
{
    main_ = mainWindow;
    SetParent(mainWindow);
}

void BusyUiPort::Busy(services::BusyKind kind)
{
    message_->ClearClick();
    message_->SetTexts(BusyTextsFor(kind));
    if (main_) {
        const QRect area = main_->geometry();
        message_->move(area.center() - QPoint(message_->width() / 2, message_->height() / 2));
        main_->setEnabled(false);
    }
    message_->show();
    message_->raise();
    if (!busy_)
        QApplication::setOverrideCursor(Qt::WaitCursor);
    busy_ = true;
}

void BusyUiPort::BusyMessage(const std::string& kind, const std::string& text)
{
    Busy(services::BusyKind::Working);
    const char* detail = kind == "10" ? "Click *Here* to stop the slew" : "Please Wait ...";
    message_->SetTexts({text.c_str(), detail});
}

void BusyUiPort::EndBusy()
{
    message_->hide();
    if (main_)
        main_->setEnabled(true);
    if (progress_)
        progress_->hide();
    if (busy_)
        QApplication::restoreOverrideCursor();
    busy_ = false;
}

void BusyUiPort::Progress(int max)
{
    if (!progress_)
        return;
    progress_->setRange(0, std::max(max, 0));
    progress_->setValue(0);
    progress_->show();
}

void BusyUiPort::Step(int pos)
{
    if (progress_)
        progress_->setValue(std::min(pos, progress_->maximum()));
}

bool BusyUiPort::Pump()
{
    QApplication::processEvents();
    return message_->Clicked();
}

} // namespace spread
