// The one real render through espeak-ng. The engine can be started once per process, so this
// binary holds nothing else.

#include "scope/Speech.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

TEST(EspeakEngine, RendersASpokenTextAndStaysOnePerProcess)
{
    if (!scope::EspeakVoiceExists())
        GTEST_SKIP() << "espeak-ng has no voice installed";
    scope::EspeakEngine engine(scope::EspeakOutput::Samples);
    ASSERT_EQ(engine.SampleRate(), 22050);

    const std::vector<std::int16_t> samples = engine.Render("Telescope Control is Active.");

    // espeak-ng 1.51 gave 38046 samples (1.73 s) with a peak of 0.86 for this text; a voice or
    // version change moves that a little, a broken render (silence, a click, a loop) far.
    const double seconds = static_cast<double>(samples.size()) / engine.SampleRate();
    EXPECT_GT(seconds, 1.0);
    EXPECT_LT(seconds, 3.0);
    int peak = 0;
    double energy = 0;
    for (const std::int16_t x : samples) {
        peak = std::max(peak, std::abs(static_cast<int>(x)));
        energy += static_cast<double>(x) * x;
    }
    EXPECT_GT(peak, 0.3 * 32767);
    const double rms = std::sqrt(energy / static_cast<double>(samples.size()));
    EXPECT_GT(rms, 0.02 * 32767);

    // A second handle shares the engine; one for the other output is refused rather than
    // starting the library again.
    EXPECT_EQ(scope::EspeakEngine(scope::EspeakOutput::Samples).Render("Target is Locked.").empty(),
              false);
    EXPECT_THROW(scope::EspeakEngine{scope::EspeakOutput::Playback}, scope::SpeechError);
}

} // namespace
