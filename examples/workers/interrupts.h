#pragma once

#include <csignal>
#include <sys/signalfd.h>
#include <unistd.h>

/// Ctrl-C as something to read, beside whatever else the loop waits for: no code runs in a signal
/// handler, where hardly anything is allowed. To be made before any thread, since each takes over
/// what its maker blocks.
class Interrupts
{
public:
    Interrupts()
    {
        sigset_t signals;
        sigemptyset(&signals);
        sigaddset(&signals, SIGINT);
        pthread_sigmask(SIG_BLOCK, &signals, nullptr);
        m_fd = signalfd(-1, &signals, SFD_NONBLOCK | SFD_CLOEXEC);
    }
    Interrupts(const Interrupts&) = delete;
    Interrupts& operator=(const Interrupts&) = delete;
    ~Interrupts() { close(m_fd); }

    [[nodiscard]] int fd() const { return m_fd; }
    /// Whether there was one since the last call.
    [[nodiscard]] bool take()
    {
        signalfd_siginfo info;
        return read(m_fd, &info, sizeof(info)) == sizeof(info);
    }

private:
    int m_fd = -1;
};
