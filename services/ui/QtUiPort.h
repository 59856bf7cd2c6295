#pragma once
// The user-interface port of the program: Qt dialogs.

#include "services/UiPort.h"

#include <functional>
#include <string>

class QWidget;

namespace services {

class QtUiPort : public UiPort
{
public:
    explicit QtUiPort(QWidget* parent = nullptr) : parent_(parent) {}
    void SetParent(QWidget* parent) { parent_ = parent; }
    // What Speak runs: the program's speech; unset, Speak says nothing.
    void SetSpeaker(std::function<void(const std::string& text)> speaker)
    {
        speaker_ = std::move(speaker);
    }

    void DisplayMessage(const Message& message) override;
    bool Ask(const std::string& question, const std::string& title, bool defaultNo) override;
    std::string AskSaveFile(const std::string& title, const std::string& filter,
                            const std::string& defaultExt,
                            const std::string& suggestedName) override;
    std::string AskOpenFile(const std::string& title, const std::string& filter) override;
    std::string AskFolder(const std::string& prompt) override;
    std::string InputBox(const std::string& prompt, const std::string& title,
                         const std::string& defaultText) override;
    void Busy(BusyKind kind) override;
    void EndBusy() override;
    void Progress(int max) override;
    void Step(int pos) override;
    bool Pump() override;
    void Speak(const std::string& text) override;

private:
    QWidget* parent_ = nullptr;
    bool cancelled_ = false;
    std::function<void(const std::string& text)> speaker_;
};

} // namespace services
