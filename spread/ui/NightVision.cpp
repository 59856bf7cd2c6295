#include "spread/ui/NightVision.h"

#include <QApplication>

namespace spread {

namespace {

// Indexes of the classic system colours used below.
enum SysColour {
    ScrollBar = 0,
    Desktop = 1,
    ActiveCaption = 2,
    InactiveCaption = 3,
    Menu = 4,
    Window = 5,
    WindowFrame = 6,
    MenuText = 7,
    WindowText = 8,
    CaptionText = 9,
    ActiveBorder = 10,
    InactiveBorder = 11,
    AppWorkspace = 12,
    Highlight = 13,
    HighlightText = 14,
    ButtonFace = 15,
    ButtonShadow = 16,
    GrayText = 17,
    ButtonText = 18,
    InactiveCaptionText = 19,
    ButtonHighlight = 20,
    DarkShadow = 21,
    Light3D = 22,
    InfoText = 23,
    InfoBack = 24,
};

} // namespace

const std::array<QColor, 25>& NightColours()
{
    static const std::array<QColor, 25> colours = {
        QColor(255, 64, 64),   QColor(0, 0, 0),       QColor(0, 0, 0),       QColor(128, 0, 0),
        QColor(128, 0, 0),     QColor(0, 0, 0),       QColor(0, 0, 0),       QColor(128, 128, 128),
        QColor(128, 128, 128), QColor(128, 128, 128), QColor(128, 0, 0),     QColor(128, 0, 0),
        QColor(128, 0, 0),     QColor(0, 0, 0),       QColor(128, 128, 128), QColor(128, 0, 0),
        QColor(80, 0, 0),      QColor(80, 0, 0),      QColor(128, 128, 128), QColor(128, 128, 128),
        QColor(255, 64, 64),   QColor(0, 0, 0),       QColor(128, 0, 0),     QColor(255, 255, 0),
        QColor(0, 0, 0),
    };
    return colours;
}

QPalette NightPalette()
{
    const auto& c = NightColours();
    QPalette p;
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        p.setColor(group, QPalette::Window, c[ButtonFace]);
        p.setColor(group, QPalette::WindowText, c[WindowText]);
        p.setColor(group, QPalette::Base, c[Window]);
        p.setColor(group, QPalette::AlternateBase, c[ButtonShadow]);
        p.setColor(group, QPalette::Text, c[WindowText]);
        p.setColor(group, QPalette::Button, c[ButtonFace]);
        p.setColor(group, QPalette::ButtonText, c[ButtonText]);
        p.setColor(group, QPalette::BrightText, c[ButtonHighlight]);
        p.setColor(group, QPalette::Light, c[ButtonHighlight]);
        p.setColor(group, QPalette::Midlight, c[Light3D]);
        p.setColor(group, QPalette::Mid, c[ButtonShadow]);
        p.setColor(group, QPalette::Dark, c[ButtonShadow]);
        p.setColor(group, QPalette::Shadow, c[DarkShadow]);
        p.setColor(group, QPalette::Highlight, c[Highlight]);
        p.setColor(group, QPalette::HighlightedText, c[HighlightText]);
        p.setColor(group, QPalette::ToolTipBase, c[InfoBack]);
        p.setColor(group, QPalette::ToolTipText, c[InfoText]);
        p.setColor(group, QPalette::Link, c[ScrollBar]);
        p.setColor(group, QPalette::PlaceholderText, c[GrayText]);
    }
    p.setColor(QPalette::Disabled, QPalette::WindowText, c[GrayText]);
    p.setColor(QPalette::Disabled, QPalette::Text, c[GrayText]);
    p.setColor(QPalette::Disabled, QPalette::ButtonText, c[GrayText]);
    return p;
}

void NightVision::SetNightVision(bool on)
{
    if (on) {
        if (!coloursSaved_) {
            savedPalette_ = QApplication::palette();
            coloursSaved_ = true;
        }
        QApplication::setPalette(NightPalette());
    } else if (coloursSaved_) {
        QApplication::setPalette(savedPalette_);
        coloursSaved_ = false;
    }
    nightMode_ = on;
}

bool NightVision::Toggle()
{
    SetNightVision(!nightMode_);
    return nightMode_;
}

} // namespace spread
