#include "scope/ui/frmSlide.h"

#include "scope/SlideShow.h"
#include "services/RtfReader.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTextBrowser>
#include <QVBoxLayout>

#include <fstream>
#include <iterator>

namespace scope::ui {

frmSlide::frmSlide(spread::AppState& TMM, std::function<void()> startShow, QWidget* parent)
    : QDialog(parent), TMM_(TMM), startShow_(std::move(startShow))
{
    setWindowTitle("Telescope Slide Show");
    auto* text = new QLabel(
        "The slide show walks your telescope through the objects of the spreadsheet tab you "
        "have selected, one after another. For each object it tells you about it by speech, "
        "shows its image when the database has one, and lets you log it on the spot.\n\n"
        "With a keypad mount you can also step through the show from the telescope's keypad: "
        "turn the controller on and type 1 (next), 2 (previous) or 3 (log) as the mount's GMT "
        "offset.");
    text->setWordWrap(true);
    text->setMinimumWidth(420);
    Command2 = new QPushButton("Start The Slide Show");
    cmdCancel = new QPushButton("Cancel");
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(Command2);
    buttons->addWidget(cmdCancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(text);
    layout->addLayout(buttons);
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(Command2, &QPushButton::clicked, this, [this] {
        if (!StartSlideShow(TMM_))
            return;
        accept();
        if (startShow_)
            startShow_();
    });
}

frmslidehelp::frmslidehelp(const std::filesystem::path& programDir, QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle("Help for Slide Show");
    rtfHelp = new QTextBrowser;
    std::ifstream in(programDir / kSlideHelpFile, std::ios::binary);
    const std::string help(std::istreambuf_iterator<char>(in), {});
    if (services::IsRtf(help))
        rtfHelp->setHtml(QString::fromStdString(services::RtfToHtml(help)));
    else
        rtfHelp->setPlainText(QString::fromStdString(help));
    auto* close = new QPushButton("Close");
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(rtfHelp);
    layout->addWidget(close, 0, Qt::AlignRight);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    resize(520, 420);
}

} // namespace scope::ui
