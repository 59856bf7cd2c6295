#include "scope/Speech.h"

#include <cstring>
#include <mutex>
#include <ostream>

#include <espeak-ng/espeak_ng.h>
#include <espeak-ng/speak_lib.h>

namespace scope {

void Speech::CreateVoice()
{
    // The objects' speech-field option (autospeakfield) has nothing to switch off here: a voice
    // speaks only what it is given.
    voice_ = platform_.CreateObject(kVoiceClass);
    if (!voice_)
        voice_ = platform_.CreateObject(kFallbackVoiceClass);
}

void Speech::Speak(const std::string& text, bool soundOn)
{
    const bool scope = IsACPScope();
    const bool telescope = IsACPTelescope();
    if (!scope && !telescope)
        return;
    // Deliberate: each registered class speaks the text, so with both it is heard twice.
    for (const bool registered : {scope, telescope}) {
        if (!registered || !soundOn)
            continue;
        if (!voice_)
            CreateVoice();
        if (!voice_)
            continue;
        try {
            voice_->speak(text);
        } catch (const std::exception&) {
            // Speech only accompanies what the window shows: a text not spoken loses nothing.
        }
    }
}

void Speech::CreateScopeVoice(bool soundOn)
{
    if ((IsACPScope() || IsACPTelescope()) && !voice_ && soundOn)
        CreateVoice();
}

// ---------------------------------------------------------------------------------------
// espeak-ng

namespace {

// The library's engine is process-wide; so is what is known about it.
struct EngineState
{
    std::mutex mutex;
    std::optional<EspeakOutput> startedFor;
    int sampleRate = 0;
    std::vector<std::int16_t>* renderInto = nullptr;
};

EngineState& Engine()
{
    static EngineState state;
    return state;
}

int CollectSamples(short* wav, int count, espeak_EVENT*)
{
    if (wav && count > 0 && Engine().renderInto)
        Engine().renderInto->insert(Engine().renderInto->end(), wav, wav + count);
    return 0;
}

void Synthesize(const std::string& text)
{
    const espeak_ERROR status = espeak_Synth(text.c_str(), text.size() + 1, 0, POS_CHARACTER, 0,
                                             espeakCHARS_UTF8, nullptr, nullptr);
    if (status != EE_OK)
        throw SpeechError("espeak-ng could not speak \"" + text + "\"");
}

} // namespace

EspeakEngine::EspeakEngine(EspeakOutput output) : output_(output)
{
    EngineState& engine = Engine();
    std::lock_guard lock(engine.mutex);
    if (engine.startedFor) {
        if (*engine.startedFor != output)
            throw SpeechError("espeak-ng was started for another output in this process");
        return;
    }
    const int rate = espeak_Initialize(output == EspeakOutput::Playback ? AUDIO_OUTPUT_PLAYBACK
                                                                        : AUDIO_OUTPUT_SYNCHRONOUS,
                                       0, nullptr, 0);
    if (rate <= 0)
        throw SpeechError("espeak-ng could not be started");
    if (espeak_SetVoiceByName("en") != EE_OK)
        throw SpeechError("espeak-ng has no voice \"en\"");
    if (output == EspeakOutput::Samples)
        espeak_SetSynthCallback(CollectSamples);
    engine.sampleRate = rate;
    engine.startedFor = output;
}

int EspeakEngine::SampleRate() const
{
    return Engine().sampleRate;
}

void EspeakEngine::Say(const std::string& text)
{
    if (output_ != EspeakOutput::Playback)
        throw SpeechError("espeak-ng was started to render samples, not to speak aloud");
    std::lock_guard lock(Engine().mutex);
    Synthesize(text);
}

std::vector<std::int16_t> EspeakEngine::Render(const std::string& text)
{
    if (output_ != EspeakOutput::Samples)
        throw SpeechError("espeak-ng was started to speak aloud, not to render samples");
    std::vector<std::int16_t> samples;
    EngineState& engine = Engine();
    std::lock_guard lock(engine.mutex);
    engine.renderInto = &samples;
    try {
        Synthesize(text);
    } catch (...) {
        engine.renderInto = nullptr;
        throw;
    }
    engine.renderInto = nullptr;
    return samples;
}

bool EspeakVoiceExists()
{
    // Reading the voice list needs only the data folder, not a started engine.
    std::lock_guard lock(Engine().mutex);
    espeak_ng_InitializePath(nullptr);
    const espeak_VOICE** voices = espeak_ListVoices(nullptr);
    return voices && voices[0];
}

namespace {

class EspeakVoice : public Voice
{
public:
    void speak(const std::string& text) override { engine_.Say(text); }

private:
    EspeakEngine engine_{EspeakOutput::Playback};
};

class StreamVoice : public Voice
{
public:
    explicit StreamVoice(std::ostream& out) : out_(out) {}
    void speak(const std::string& text) override { out_ << "[speak] " << text << "\n"; }

private:
    std::ostream& out_;
};

} // namespace

bool EspeakSpeech::IsRegistered(std::string_view className)
{
    if (className != kScopeClass)
        return false;
    if (!voiceExists_)
        voiceExists_ = EspeakVoiceExists();
    return *voiceExists_;
}

std::unique_ptr<Voice> EspeakSpeech::CreateObject(std::string_view className)
{
    if (className != kVoiceClass)
        return nullptr;
    try {
        return std::make_unique<EspeakVoice>();
    } catch (const SpeechError&) {
        return nullptr;
    }
}

bool StreamSpeech::IsRegistered(std::string_view className)
{
    return className == kScopeClass && voiceExists_;
}

std::unique_ptr<Voice> StreamSpeech::CreateObject(std::string_view className)
{
    if (className != kVoiceClass)
        return nullptr;
    return std::make_unique<StreamVoice>(out_);
}

} // namespace scope
