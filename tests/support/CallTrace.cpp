// A library to be preloaded. It writes the calls of a program that start and stop things, one line
// a call, to the file that CALL_TRACE names, and passes each call on: random numbers, OpenAL,
// FLTK's timers, the window's appearance and the event loop. Pointers get names in the order in
// which they are first seen: callback1, data1.

#include <AL/al.h>
#include <AL/alut.h>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <string>
#include <vector>

namespace {

[[gnu::format(printf, 1, 2)]] void note(const char* format, ...)
{
    static std::FILE* const file = [] {
        const char* const name = std::getenv("CALL_TRACE");
        std::FILE* const opened = name ? std::fopen(name, "we") : nullptr;
        if (opened) {
            std::setvbuf(opened, nullptr, _IOLBF, BUFSIZ);
        }
        return opened;
    }();
    if (file) {
        va_list arguments;
        va_start(arguments, format);
        std::vfprintf(file, format, arguments);
        va_end(arguments);
    }
}

/// The function of that name behind this library.
template<typename Function>
Function* next(const char* symbol)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, symbol));
}

std::string nameOf(const char* kind, const void* pointer, std::vector<const void*>& seen)
{
    for (std::size_t i = 0; i < seen.size(); ++i) {
        if (seen[i] == pointer) {
            return kind + std::to_string(i + 1);
        }
    }
    seen.push_back(pointer);
    return kind + std::to_string(seen.size());
}

std::string callbackName(void (*callback)(void*))
{
    static std::vector<const void*> seen;
    return nameOf("callback", reinterpret_cast<const void*>(callback), seen);
}

std::string dataName(const void* data)
{
    static std::vector<const void*> seen;
    return nameOf("data", data, seen);
}

/// Names of the values that a source's parameter can have here; others in digits.
std::string parameterName(ALenum parameter)
{
    switch (parameter) {
    case AL_POSITION:
        return "position";
    case AL_GAIN:
        return "gain";
    case AL_LOOPING:
        return "looping";
    case AL_BUFFER:
        return "buffer";
    case AL_SEC_OFFSET:
        return "seconds";
    case AL_SAMPLE_OFFSET:
        return "samples";
    default:
        return std::to_string(parameter);
    }
}

double wide(float number)
{
    return static_cast<double>(number);
}

} // namespace

extern "C" {

void srand(unsigned seed) noexcept
{
    note("srand %u\n", seed);
    next<void(unsigned)>("srand")(seed);
}

int rand() noexcept
{
    static auto* const real = next<int()>("rand");
    note("rand\n");
    return real();
}

ALboolean alutInit(int* count, char** arguments)
{
    note("alutInit\n");
    return next<ALboolean(int*, char**)>("alutInit")(count, arguments);
}

ALboolean alutExit()
{
    note("alutExit\n");
    return next<ALboolean()>("alutExit")();
}

void alGenBuffers(ALsizei count, ALuint* names)
{
    next<void(ALsizei, ALuint*)>("alGenBuffers")(count, names);
    note("alGenBuffers %d: %u\n", count, names[0]);
}

void alGenSources(ALsizei count, ALuint* names)
{
    next<void(ALsizei, ALuint*)>("alGenSources")(count, names);
    note("alGenSources %d: %u\n", count, names[0]);
}

void alListener3f(ALenum parameter, float x, float y, float z)
{
    note("alListener3f %s %g %g %g\n", parameterName(parameter).c_str(), wide(x), wide(y), wide(z));
    next<void(ALenum, float, float, float)>("alListener3f")(parameter, x, y, z);
}

void alSource3f(ALuint source, ALenum parameter, float x, float y, float z)
{
    note("alSource3f %u %s %g %g %g\n", source, parameterName(parameter).c_str(), wide(x), wide(y),
         wide(z));
    next<void(ALuint, ALenum, float, float, float)>("alSource3f")(source, parameter, x, y, z);
}

void alBufferData(ALuint buffer, ALenum format, const ALvoid* data, ALsizei bytes, ALsizei rate)
{
    const char* const channels = format == AL_FORMAT_MONO16     ? "mono"
                                 : format == AL_FORMAT_STEREO16 ? "stereo"
                                                                : "?";
    note("alBufferData %u %s %d %d\n", buffer, channels, bytes, rate);
    next<void(ALuint, ALenum, const ALvoid*, ALsizei, ALsizei)>("alBufferData")(buffer, format,
                                                                                data, bytes, rate);
}

void alSourcei(ALuint source, ALenum parameter, ALint value)
{
    note("alSourcei %u %s %d\n", source, parameterName(parameter).c_str(), value);
    next<void(ALuint, ALenum, ALint)>("alSourcei")(source, parameter, value);
}

void alSourcef(ALuint source, ALenum parameter, float value)
{
    note("alSourcef %u %s %g\n", source, parameterName(parameter).c_str(), wide(value));
    next<void(ALuint, ALenum, float)>("alSourcef")(source, parameter, value);
}

void alSourcePlay(ALuint source)
{
    note("alSourcePlay %u\n", source);
    next<void(ALuint)>("alSourcePlay")(source);
}

void alSourceStop(ALuint source)
{
    note("alSourceStop %u\n", source);
    next<void(ALuint)>("alSourceStop")(source);
}

void alGetSourcef(ALuint source, ALenum parameter, float* value)
{
    note("alGetSourcef %u %s\n", source, parameterName(parameter).c_str());
    next<void(ALuint, ALenum, float*)>("alGetSourcef")(source, parameter, value);
}

void alDeleteBuffers(ALsizei count, const ALuint* names)
{
    note("alDeleteBuffers %d: %u\n", count, names[0]);
    next<void(ALsizei, const ALuint*)>("alDeleteBuffers")(count, names);
}

void alDeleteSources(ALsizei count, const ALuint* names)
{
    note("alDeleteSources %d: %u\n", count, names[0]);
    next<void(ALsizei, const ALuint*)>("alDeleteSources")(count, names);
}

// FLTK's, by the names that the linker knows them by: its headers would bring their declarations.

void addTimeout(double, void (*)(void*), void*) __asm__("_ZN2Fl11add_timeoutEdPFvPvES0_");
void repeatTimeout(double, void (*)(void*), void*) __asm__("_ZN2Fl14repeat_timeoutEdPFvPvES0_");
void showWindow(void*) __asm__("_ZN12Fl_Gl_Window4showEv");
int waitForEvents() __asm__("_ZN2Fl4waitEv");

void addTimeout(double seconds, void (*callback)(void*), void* data)
{
    note("add_timeout %g %s %s\n", seconds, callbackName(callback).c_str(), dataName(data).c_str());
    next<void(double, void (*)(void*), void*)>("_ZN2Fl11add_timeoutEdPFvPvES0_")(seconds, callback,
                                                                                 data);
}

void repeatTimeout(double seconds, void (*callback)(void*), void* data)
{
    note("repeat_timeout %.17g %s %s\n", seconds, callbackName(callback).c_str(),
         dataName(data).c_str());
    next<void(double, void (*)(void*), void*)>("_ZN2Fl14repeat_timeoutEdPFvPvES0_")(seconds,
                                                                                    callback, data);
}

void showWindow(void* window)
{
    note("show %s\n", dataName(window).c_str());
    next<void(void*)>("_ZN12Fl_Gl_Window4showEv")(window);
}

int waitForEvents()
{
    note("wait\n");
    return next<int()>("_ZN2Fl4waitEv")();
}

} // extern "C"
