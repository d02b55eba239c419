#include "Interruption.h"

#include <csignal>
#include <initializer_list>

namespace record {

namespace {

volatile std::sig_atomic_t noted = 0;

void note(int signal)
{
    noted = signal;
}

} // namespace

void Interruption::watch()
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action = {};
        // A signal that was ignored at the start, as by nohup, stays ignored.
        if (sigaction(signal, nullptr, &action) == 0 && action.sa_handler != SIG_IGN) {
            action = {};
            action.sa_handler = note;
            action.sa_flags = SA_RESTART;
            sigaction(signal, &action, nullptr);
        }
    }
}

void Interruption::check()
{
    if (noted != 0) {
        throw Interruption{noted};
    }
}

} // namespace record
