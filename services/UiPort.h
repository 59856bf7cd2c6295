#pragma once
// The one way core routines reach the user: messages and the fault report, Yes/No questions,
// file, folder and input dialogs, the busy window, progress and the event pump.
// Texts are UTF-8. An empty answer from a file, folder or input dialog means cancelled.

#include <filesystem>
#include <string>

namespace services {

// The message window's contents, as one message at a time fills it.
struct Message
{
    std::string kind;         // "I", "E", "U", or anything else (then Title stays empty)
    std::string Title;        // window title, set by kind
    std::string ShortMessage; // the heading line
    std::string LongMessage;  // the body; the window shows NoAdditionalInfo when empty
    bool PauseWindow = false;
};

inline constexpr const char* NoAdditionalInfo = " No Additional Info Available ";

// Title of the message window for a kind; empty for an unknown kind.
std::string TitleForKind(const std::string& kind);

// The busy window's texts.
enum class BusyKind
{
    Loading,  // loading a list into the grid
    Printing, // laying out a report
    Working,  // anything else
    Saving,   // the automatic logbook copy at shut-down
};

class UiPort
{
public:
    virtual ~UiPort() = default;

    // Shows one message window and returns when the user has closed it.
    virtual void DisplayMessage(const Message& message) = 0;
    // Yes/No question; true for Yes.
    virtual bool Ask(const std::string& question, const std::string& title, bool defaultNo) = 0;
    virtual std::string AskSaveFile(const std::string& title, const std::string& filter,
                                    const std::string& defaultExt,
                                    const std::string& suggestedName) = 0;
    virtual std::string AskOpenFile(const std::string& title, const std::string& filter) = 0;
    virtual std::string AskFolder(const std::string& prompt) = 0;
    virtual std::string InputBox(const std::string& prompt, const std::string& title,
                                 const std::string& defaultText) = 0;

    virtual void Busy(BusyKind kind) = 0;
    // The message window shown without waiting, as a busy window with a kind of its own ("10"
    // while a mount slews, "8" while its position is read) and one line of text at 12 points.
    // EndBusy closes it; a click on it makes Pump() report a cancel. By default the busy window
    // of BusyKind::Working.
    virtual void BusyMessage(const std::string& kind, const std::string& text);
    virtual void EndBusy() = 0;
    virtual void Progress(int max) = 0;
    virtual void Step(int pos) = 0;
    // Lets the window system deliver its events; true when the busy window was clicked since
    // the last Busy().
    virtual bool Pump() = 0;
    virtual void Speak(const std::string& text) = 0;

    // The message window of a kind: the title argument is the heading, text the body.
    void ShowMessage(const std::string& text, const std::string& title, const std::string& kind,
                     bool pause = false);

    // Shows a trapped fault and appends it to the session's error log.
    // Location: "Module1.CalcJulian", "frmComet.cmdPlot_Click"; may be empty.
    void ReportFault(const std::string& message, const std::string& location);
    // Appends the fault to the error log only, as telescope driver errors are logged.
    void LogFault(const std::string& message, const std::string& location);

    // Where faults are appended; empty: nowhere.
    void SetErrorLog(const std::filesystem::path& path) { errorLog_ = path; }
    const std::filesystem::path& ErrorLog() const { return errorLog_; }

private:
    std::filesystem::path errorLog_;
};

} // namespace services
