#include "app/SlideWiring.h"

#include "scope/Speech.h"
#include "scope/TelescopeStuff.h"
#include "scope/ui/frmSlide.h"
#include "scope/ui/frmslideinp.h"
#include "spread/AppState.h"
#include "spread/ui/frmMainScreen.h"

#include <QObject>
#include <QPointer>

namespace app {

namespace {

// The telescope context of the slide show, living as long as the main window.
class SlideLink : public QObject
{
public:
    SlideLink(spread::frmMainScreen& window, spread::AppState& state, const astro::Clock& clock,
              scope::SpeechPlatform& platform)
        : QObject(&window), window_(window), state_(state),
          speech_(platform), context_{state.ui, state.prefs, scopeState_, layer_, speech_, clock}
    {
        layer_.MakeDriver = scope::MakeTelescope;
        layer_.profileFile = state.settings.File();
    }
    ~SlideLink() override { scope::ReleaseScope(scopeState_); }

    void Open()
    {
        state_.CurrTab = window_.CurrTab();
        if (show_)
            show_->close();
        auto* opening = new scope::ui::frmSlide(
            state_, [this] { StartShow(); }, &window_);
        opening->setAttribute(Qt::WA_DeleteOnClose);
        opening->show();
    }

private:
    void StartShow()
    {
        show_ = new scope::ui::frmslideinp(state_, context_, {}, &window_);
        show_->setAttribute(Qt::WA_DeleteOnClose);
        show_->show();
        show_->Open();
    }

    spread::frmMainScreen& window_;
    spread::AppState& state_;
    scope::TelescopeState scopeState_;
    scope::DriverLayer layer_;
    scope::Speech speech_;
    scope::ScopeContext context_;
    QPointer<scope::ui::frmslideinp> show_;
};

} // namespace

void WireSlideShow(spread::frmMainScreen& window, spread::AppState& state,
                   const astro::Clock& clock, scope::SpeechPlatform& speech)
{
    auto* link = new SlideLink(window, state, clock, speech);
    window.Dispatcher().SetAction("slideshow", [link] { link->Open(); });
}

} // namespace app
