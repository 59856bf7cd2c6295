#pragma once
// Night vision: a dark red palette for every Selvane window, so that the screen does not ruin
// the observer's dark adaptation. The desktop and other programs are left alone. The palette in
// force when night vision was turned on is kept and put back exactly when it is turned off.

#include <QColor>
#include <QPalette>

#include <array>

namespace spread {

// The night colours of the 25 classic system colour indexes (scroll bar, desktop, captions,
// menus, window, frame, texts, borders, highlight, buttons, shadows, info tips), red, green,
// blue.
const std::array<QColor, 25>& NightColours();

// The night palette: the system colour indexes mapped onto Qt's colour roles.
QPalette NightPalette();

class NightVision
{
public:
    bool NightMode() const { return nightMode_; }

    // Turns night vision on or off for the whole application. Turning on twice keeps the day
    // palette taken the first time; turning off without ever turning on changes nothing.
    void SetNightVision(bool on);
    // What the key redmode does: flips NightMode.
    bool Toggle();

private:
    bool nightMode_ = false;
    bool coloursSaved_ = false;
    QPalette savedPalette_;
};

} // namespace spread
