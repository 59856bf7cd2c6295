#include "services/ScriptedUiPort.h"

#include "services/Fault.h"

#include <iostream>

namespace services {

void ScriptedUiPort::DisplayMessage(const Message& message)
{
    shown.push_back({message});
    if (echo)
        std::cerr << "[" << message.kind << "] " << message.ShortMessage << ": "
                  << message.LongMessage << "\n";
}

bool ScriptedUiPort::Ask(const std::string& question, const std::string& title, bool defaultNo)
{
    asked.push_back(question);
    if (echo)
        std::cerr << "[?] " << title << ": " << question << "\n";
    if (answers.empty()) {
        if (strict)
            throw Fault("Unanswered question: " + title + ": " + question, "ScriptedUiPort.Ask");
        return unansweredYes.value_or(!defaultNo);
    }
    const bool yes = answers.front();
    answers.pop_front();
    return yes;
}

std::string ScriptedUiPort::NextFile(const std::string& what)
{
    asked.push_back(what);
    if (fileAnswers.empty()) {
        if (strict)
            throw Fault("Unanswered file dialog: " + what, "ScriptedUiPort");
        return {};
    }
    std::string answer = fileAnswers.front();
    fileAnswers.pop_front();
    return answer;
}

std::string ScriptedUiPort::AskSaveFile(const std::string& title, const std::string&,
                                        const std::string&, const std::string&)
{
    return NextFile(title);
}

std::string ScriptedUiPort::AskOpenFile(const std::string& title, const std::string&)
{
    return NextFile(title);
}

std::string ScriptedUiPort::AskFolder(const std::string& prompt)
{
    return NextFile(prompt);
}

std::string ScriptedUiPort::InputBox(const std::string& prompt, const std::string& title,
                                     const std::string&)
{
    asked.push_back(prompt);
    if (inputAnswers.empty()) {
        if (strict)
            throw Fault("Unanswered input box: " + title + ": " + prompt, "ScriptedUiPort");
        return {};
    }
    std::string answer = inputAnswers.front();
    inputAnswers.pop_front();
    return answer;
}

void ScriptedUiPort::Busy(BusyKind)
{
    busy = true;
    pumps = 0;
}

void ScriptedUiPort::BusyMessage(const std::string& kind, const std::string& text)
{
    Message m;
    m.kind = kind;
    m.Title = TitleForKind(kind);
    m.ShortMessage = text;
    busyMessages.push_back(m);
    if (echo)
        std::cerr << "[" << kind << "] " << text << ": \n";
    Busy(BusyKind::Working);
}

void ScriptedUiPort::EndBusy()
{
    busy = false;
}

void ScriptedUiPort::Progress(int max)
{
    progressMax = max;
    progressPos = 0;
}

void ScriptedUiPort::Step(int pos)
{
    progressPos = pos;
}

bool ScriptedUiPort::Pump()
{
    ++pumps;
    return cancelAfterPumps >= 0 && pumps >= cancelAfterPumps;
}

void ScriptedUiPort::Speak(const std::string& text)
{
    spoken.push_back(text);
}

} // namespace services
