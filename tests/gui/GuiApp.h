#pragma once
// The one QApplication of the widget tests, made on first use. It is never destroyed:
// destroying it from a static destructor at exit would run after Qt's own clean-up.

#include <QApplication>

inline QApplication& App()
{
    static int argc = 1;
    static char name[] = "selvane_gui_tests";
    static char* argv[] = {name, nullptr};
    static QApplication* app = new QApplication(argc, argv);
    return *app;
}
