#include "services/ui/QtUiPort.h"

#include <QApplication>
#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>

namespace services {

namespace {

QString Q(const std::string& s)
{
    return QString::fromStdString(s);
}

std::string S(const QString& s)
{
    return s.toStdString();
}

} // namespace

void QtUiPort::DisplayMessage(const Message& message)
{
    QMessageBox box(parent_);
    box.setWindowTitle(Q(message.Title));
    box.setText(Q(message.ShortMessage));
    box.setInformativeText(message.LongMessage.empty() ? Q(NoAdditionalInfo)
                                                       : Q(message.LongMessage));
    box.setIcon(message.kind == "E"   ? QMessageBox::Critical
                : message.kind == "U" ? QMessageBox::Warning
                                      : QMessageBox::Information);
    box.exec();
}

bool QtUiPort::Ask(const std::string& question, const std::string& title, bool defaultNo)
{
    const auto answer =
        QMessageBox::question(parent_, Q(title), Q(question), QMessageBox::Yes | QMessageBox::No,
                              defaultNo ? QMessageBox::No : QMessageBox::Yes);
    return answer == QMessageBox::Yes;
}

std::string QtUiPort::AskSaveFile(const std::string& title, const std::string& filter,
                                  const std::string& defaultExt, const std::string& suggestedName)
{
    QFileDialog dialog(parent_, Q(title), QString(), Q(filter));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(Q(defaultExt));
    dialog.selectFile(Q(suggestedName));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return S(dialog.selectedFiles().front());
}

std::string QtUiPort::AskOpenFile(const std::string& title, const std::string& filter)
{
    return S(QFileDialog::getOpenFileName(parent_, Q(title), QString(), Q(filter)));
}

std::string QtUiPort::AskFolder(const std::string& prompt)
{
    return S(QFileDialog::getExistingDirectory(parent_, Q(prompt)));
}

std::string QtUiPort::InputBox(const std::string& prompt, const std::string& title,
                               const std::string& defaultText)
{
    bool ok = false;
    const QString text =
        QInputDialog::getText(parent_, Q(title), Q(prompt), QLineEdit::Normal, Q(defaultText), &ok);
    return ok ? S(text) : std::string();
}

void QtUiPort::Busy(BusyKind)
{
    cancelled_ = false;
    QApplication::setOverrideCursor(Qt::WaitCursor);
}

void QtUiPort::EndBusy()
{
    QApplication::restoreOverrideCursor();
}

void QtUiPort::Progress(int) {}

void QtUiPort::Step(int) {}

bool QtUiPort::Pump()
{
    QApplication::processEvents();
    return cancelled_;
}

void QtUiPort::Speak(const std::string& text)
{
    if (speaker_)
        speaker_(text);
}

} // namespace services
