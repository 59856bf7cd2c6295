#pragma once
// The telescope of a selvane-cli command: the process-wide telescope state, the driver layer on
// the mount of telescopetype, and speech written to stderr as "[speak] TEXT" (the routines' speech
// gates still apply). One per command run; the routines take context.

#include "scope/Speech.h"
#include "scope/TelescopeStuff.h"
#include "spread/AppState.h"

#include <iostream>

namespace app {

struct CliScope
{
    CliScope(spread::AppState& TMM, const astro::Clock& computerClock)
        : speechPlatform(std::cerr, scope::EspeakVoiceExists()),
          speech(speechPlatform), context{TMM.ui, TMM.prefs, state, layer, speech, computerClock}
    {
        layer.MakeDriver = [](std::string_view identifier) {
            return scope::MakeTelescope(identifier);
        };
        layer.profileFile = TMM.settings.File();
    }
    CliScope(const CliScope&) = delete;
    CliScope& operator=(const CliScope&) = delete;

    scope::TelescopeState state;
    scope::DriverLayer layer;
    scope::StreamSpeech speechPlatform;
    scope::Speech speech;
    scope::ScopeContext context;
};

} // namespace app
