#ifndef CORVANE_HOST_SIGNALS_HELD_H
#define CORVANE_HOST_SIGNALS_HELD_H

#include <csignal>

namespace corvane::host
{
// Holds back the signals by which users and systems end a program, as long as it lives: for the moments in which
// something temporary stands on the disk. The library's threads, which would take them, have ended by then.
class SignalsHeld
{
public:
    SignalsHeld()
    {
        sigset_t ending;
        sigemptyset(&ending);
        for (int signal : {SIGINT, SIGTERM, SIGHUP})
            sigaddset(&ending, signal);
        pthread_sigmask(SIG_BLOCK, &ending, &before_);
    }
    ~SignalsHeld() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;

private:
    sigset_t before_;
};
} // namespace corvane::host

#endif
