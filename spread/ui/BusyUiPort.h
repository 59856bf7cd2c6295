#pragma once
// The program's user-interface port with the busy window frmMessage: while a long loop runs the
// main window is disabled, the busy window says what is happening, the status band's progress
// bar counts, and one click anywhere on the busy window asks the loop to stop.

#include "services/ui/QtUiPort.h"

#include <QPointer>
#include <QProgressBar>
#include <QWidget>

class QLabel;

namespace spread {

// The two lines of the busy window for a kind of work.
struct BusyTexts
{
    const char* heading;
    const char* detail;
};
BusyTexts BusyTextsFor(services::BusyKind kind);

class frmMessage : public QWidget
{
public:
    frmMessage();
    void SetTexts(const BusyTexts& texts);
    bool Clicked() const { return clicked_; }
    void ClearClick() { clicked_ = false; }

protected:
    void mousePressEvent(QMouseEvent* event) override;

private:
    QLabel* lblHeading_;
    QLabel* lblDetail_;
    bool clicked_ = false;
};

class BusyUiPort : public services::QtUiPort
{
public:
    explicit BusyUiPort(QWidget* mainWindow = nullptr);
    ~BusyUiPort() override;

    // The main window that is disabled while busy, and the status band's progress bar.
    void SetMainWindow(QWidget* mainWindow);
    void SetProgressBar(QProgressBar* bar) { progress_ = bar; }

    void Busy(services::BusyKind kind) override;
    // The one-line message of a kind ("Slewing ..."); while a mount slews a click stops it.
    void BusyMessage(const std::string& kind, const std::string& text) override;
    void EndBusy() override;
    void Progress(int max) override;
    void Step(int pos) override;
    bool Pump() override;

    bool IsBusy() const { return busy_; }
    frmMessage& BusyWindow() { return *message_; }

private:
    QPointer<QWidget> main_;
    QPointer<QProgressBar> progress_;
    frmMessage* message_; // a window of its own, so that disabling the main window spares it
    bool busy_ = false;
};

} // namespace spread
