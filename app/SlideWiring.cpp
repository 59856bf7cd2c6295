#include "app/SlideWiring.h"

#include "scope/TelescopeStuff.h"
#include "scope/ui/frmSlide.h"
#include "scope/ui/frmslideinp.h"
#include "spread/AppState.h"
#include "spread/ui/frmMainScreen.h"

#include <QObject>
#include <QPointer>

namespace app {

namespace {

// The slide show's windows, children of the main window so that they go with it.
class SlideLink : public QObject
{
public:
    SlideLink(spread::frmMainScreen& window, spread::AppState& state,
              std::function<scope::ScopeContext*()> telescope)
        : QObject(&window), window_(window), state_(state), telescope_(std::move(telescope))
    {
    }

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
        scope::ScopeContext* context = telescope_ ? telescope_() : nullptr;
        if (!context)
            return;
        show_ = new scope::ui::frmslideinp(state_, *context, {}, &window_);
        show_->setAttribute(Qt::WA_DeleteOnClose);
        show_->show();
        show_->Open();
    }

    spread::frmMainScreen& window_;
    spread::AppState& state_;
    std::function<scope::ScopeContext*()> telescope_;
    QPointer<scope::ui::frmslideinp> show_;
};

} // namespace

void WireSlideShow(spread::frmMainScreen& window, spread::AppState& state,
                   std::function<scope::ScopeContext*()> telescope)
{
    auto* link = new SlideLink(window, state, std::move(telescope));
    window.Dispatcher().SetAction("slideshow", [link] { link->Open(); });
}

} // namespace app
