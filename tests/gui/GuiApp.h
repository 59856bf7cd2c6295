#pragma once
// The one QApplication of the widget tests, made on first use, and the port the main-window
// tests share. The application is never destroyed: destroying it from a static destructor at
// exit would run after Qt's own clean-up.

#include "spread/ui/BusyUiPort.h"

#include <QApplication>
#include <QListWidget>
#include <QTest>

#include <deque>
#include <string>
#include <vector>

#include <gtest/gtest.h>

inline QApplication& App()
{
    static int argc = 1;
    static char name[] = "selvane_gui_tests";
    static char* argv[] = {name, nullptr};
    static QApplication* app = new QApplication(argc, argv);
    return *app;
}

// A person's click on an entry of a list: it toggles the entry.
inline void Click(QListWidget& list, const QString& text)
{
    const auto found = list.findItems(text, Qt::MatchExactly);
    ASSERT_EQ(found.size(), 1) << text.toStdString();
    list.scrollToItem(found[0]);
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualItemRect(found[0]).center());
}

// The program's port with its real busy window and progress bar; only the modal windows, which
// would wait for a person, are replaced by a record and queues of answers.
class TestPort : public spread::BusyUiPort
{
public:
    std::vector<services::Message> shown;
    std::deque<std::string> inputAnswers;
    std::deque<std::string> saveAnswers;
    std::vector<std::string> prompts;
    // Answers to the Yes/No questions, in order, and the questions asked.
    std::deque<bool> askAnswers;
    std::vector<std::string> questions;
    std::deque<std::string> openAnswers;

    void DisplayMessage(const services::Message& message) override { shown.push_back(message); }
    bool Ask(const std::string& question, const std::string&, bool) override
    {
        questions.push_back(question);
        if (askAnswers.empty()) {
            ADD_FAILURE() << "Unexpected question: " << question;
            return false;
        }
        const bool answer = askAnswers.front();
        askAnswers.pop_front();
        return answer;
    }
    std::string InputBox(const std::string& prompt, const std::string& title,
                         const std::string& defaultText) override
    {
        prompts.push_back(prompt + "|" + title + "|" + defaultText);
        return Next(inputAnswers, "input box " + prompt);
    }
    std::string AskSaveFile(const std::string&, const std::string&, const std::string&,
                            const std::string&) override
    {
        return Next(saveAnswers, "save dialog");
    }
    std::string AskOpenFile(const std::string&, const std::string&) override
    {
        return Next(openAnswers, "open dialog");
    }

private:
    static std::string Next(std::deque<std::string>& answers, const std::string& what)
    {
        if (answers.empty()) {
            ADD_FAILURE() << "Unanswered " << what;
            return {};
        }
        std::string answer = answers.front();
        answers.pop_front();
        return answer;
    }
};
