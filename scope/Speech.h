#pragma once
// Speech: the short spoken texts of the telescope routines ("Telescope Control is Active.").
//
// What is asked of the machine stands behind SpeechPlatform, under the class names the routines
// have always asked for: a class is "registered" or not, and a speech object is made from a
// class name. In the program, "ACP.Scope registered" means that an espeak-ng voice exists,
// "ACP.Telescope" is never registered (so a text is spoken once), and "ACP.Voice" is a voice
// speaking through espeak-ng; "LX200.Voice" cannot be made.
//
// espeak-ng holds one engine per process and cannot be started a second time once stopped, so
// the engine is started at its first use, for one kind of output, and kept until the process
// ends. Texts are UTF-8.

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace scope {

inline constexpr std::string_view kScopeClass = "ACP.Scope";
inline constexpr std::string_view kTelescopeClass = "ACP.Telescope";
inline constexpr std::string_view kVoiceClass = "ACP.Voice";
inline constexpr std::string_view kFallbackVoiceClass = "LX200.Voice";

// A speech object.
class Voice
{
public:
    virtual ~Voice() = default;
    virtual void speak(const std::string& text) = 0;
};

// What speech asks of the machine.
class SpeechPlatform
{
public:
    virtual ~SpeechPlatform() = default;
    // Whether a class is registered on this machine.
    virtual bool IsRegistered(std::string_view className) = 0;
    // The speech object of a class; nothing when it cannot be made.
    virtual std::unique_ptr<Voice> CreateObject(std::string_view className) = 0;
};

// The process-wide speech object Voice and the routine that speaks through it. Made once by the
// program and kept; the voice is created at its first need and never released.
class Speech
{
public:
    explicit Speech(SpeechPlatform& platform) : platform_(platform) {}

    bool IsACPScope() { return platform_.IsRegistered(kScopeClass); }
    bool IsACPTelescope() { return platform_.IsRegistered(kTelescopeClass); }

    // Speaks text once for each of the two classes that is registered, when soundOn (the
    // setting Dsound); with sound off no speech object is ever created.
    void Speak(const std::string& text, bool soundOn);

    // The creation at the start of the main window: when either class is registered, there is
    // no voice yet and sound is on.
    void CreateScopeVoice(bool soundOn);

    bool HasVoice() const { return voice_ != nullptr; }

private:
    // ACP.Voice, else LX200.Voice; the voice stays empty when neither can be made.
    void CreateVoice();

    SpeechPlatform& platform_;
    std::unique_ptr<Voice> voice_;
};

class SpeechError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

// The output the process's espeak-ng engine was started for.
enum class EspeakOutput {
    Playback, // to the sound device, on espeak-ng's own thread
    Samples,  // synchronous, into memory (tests, files)
};

// A handle on the process's espeak-ng engine. The first handle starts the engine for its output
// with the voice "en"; later handles share it.
// Status: throws SpeechError when the engine cannot be started or was started for the other
// output.
class EspeakEngine
{
public:
    explicit EspeakEngine(EspeakOutput output);

    // Samples per second of the rendered audio (22050 for espeak-ng 1.51).
    int SampleRate() const;
    // Playback: queues the text and returns at once. Without a sound device the audio is
    // dropped.
    void Say(const std::string& text);
    // Samples: the text as 16-bit mono samples at SampleRate().
    std::vector<std::int16_t> Render(const std::string& text);

private:
    EspeakOutput output_;
};

// Whether espeak-ng has a voice installed; asked without starting the engine.
bool EspeakVoiceExists();

// The program's speech: ACP.Scope is registered when an espeak-ng voice exists, ACP.Voice
// speaks aloud through espeak-ng.
class EspeakSpeech : public SpeechPlatform
{
public:
    bool IsRegistered(std::string_view className) override;
    std::unique_ptr<Voice> CreateObject(std::string_view className) override;

private:
    std::optional<bool> voiceExists_;
};

// The command line's speech: the same gates (given), and a voice that writes one line
// "[speak] TEXT" to a stream for each spoken text.
class StreamSpeech : public SpeechPlatform
{
public:
    StreamSpeech(std::ostream& out, bool voiceExists) : out_(out), voiceExists_(voiceExists) {}

    bool IsRegistered(std::string_view className) override;
    std::unique_ptr<Voice> CreateObject(std::string_view className) override;

private:
    std::ostream& out_;
    bool voiceExists_;
};

} // namespace scope
