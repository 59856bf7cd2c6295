#pragma once
// The user-interface port of selvane-cli and the tests: answers come from queues, every
// message is recorded, and what would have been shown goes to stderr as "[kind] title: text".

#include "services/UiPort.h"

#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace services {

class ScriptedUiPort : public UiPort
{
public:
    struct Shown
    {
        Message message;
        std::string Text() const { return message.LongMessage; }
    };

    // Answers, taken in order. With strict on, a question with no queued answer throws, so
    // that a test fails; otherwise the default answer is given.
    std::deque<bool> answers;
    std::deque<std::string> fileAnswers;  // AskSaveFile, AskOpenFile, AskFolder
    std::deque<std::string> inputAnswers; // InputBox
    bool strict = false;
    // The answer to a question when the queue is empty; unset: the question's default.
    std::optional<bool> unansweredYes;
    bool echo = true; // write shown messages to stderr
    // Pump() reports a cancel once this many calls have been made since Busy(); -1 never.
    int cancelAfterPumps = -1;

    std::vector<Shown> shown;
    std::vector<std::string> asked; // the questions, in order
    std::vector<std::string> spoken;
    std::vector<Message> busyMessages; // BusyMessage's kind and text (as ShortMessage)
    int pumps = 0;
    int progressMax = 0;
    int progressPos = 0;
    bool busy = false;

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
    void BusyMessage(const std::string& kind, const std::string& text) override;
    void EndBusy() override;
    void Progress(int max) override;
    void Step(int pos) override;
    bool Pump() override;
    void Speak(const std::string& text) override;

private:
    std::string NextFile(const std::string& what);
};

} // namespace services
