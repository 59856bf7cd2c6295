#pragma once
// The slide show's opening window (frmSlide), which checks the current tab and opens the show,
// and its help window (frmslidehelp).

#include "spread/AppState.h"

#include <QDialog>

#include <filesystem>
#include <functional>

class QPushButton;
class QTextBrowser;

namespace scope::ui {

inline constexpr const char* kSlideHelpFile = "slideshowhelp.rtf";

class frmSlide : public QDialog
{
public:
    // Given: startShow, called when the checks of Start The Slide Show pass (after this window
    //   has closed).
    frmSlide(spread::AppState& TMM, std::function<void()> startShow, QWidget* parent = nullptr);

    QPushButton* Command2 = nullptr; // Start The Slide Show
    QPushButton* cmdCancel = nullptr;

private:
    spread::AppState& TMM_;
    std::function<void()> startShow_;
};

class frmslidehelp : public QDialog
{
public:
    frmslidehelp(const std::filesystem::path& programDir, QWidget* parent = nullptr);

    QTextBrowser* rtfHelp = nullptr;
};

} // namespace scope::ui
