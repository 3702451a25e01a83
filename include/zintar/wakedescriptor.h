#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <sys/eventfd.h>
#include <unistd.h>

/// A file descriptor that becomes readable when an event queue has something to tell: for hosts
/// whose loop stands in `poll`, `epoll` or that of a toolkit. Linux alone; the library itself
/// opens no file, so all of it is here, in the host's program.
///
///     ZTWakeDescriptor wake;
///     ZTEventQueue queue({.wake = wake.waker()});
///     pollfd waiting{wake.fd(), POLLIN, 0};
///     while (poll(&waiting, 1, -1) >= 0) {
///         wake.clear();
///         queue.deliver();
///     }
///
/// Threads: `waker()` may be called on any; the rest belongs to the thread of the loop.
class ZTWakeDescriptor
{
public:
    ZTWakeDescriptor() : m_file(std::make_shared<File>()) {}

    /// -1 where the system had none left. Good as long as this lives.
    [[nodiscard]] int fd() const { return m_file->fd; }
    /// Not readable any more, until there is news. To be called before the queue delivers.
    void clear()
    {
        std::uint64_t count = 0;
        (void)!read(m_file->fd, &count, sizeof(count));
    }
    /// For `ZTEventQueue::Options::wake`. It may outlive this.
    [[nodiscard]] std::function<void()> waker() const
    {
        return [file = m_file] {
            const std::uint64_t one = 1;
            (void)!write(file->fd, &one, sizeof(one));
        };
    }

private:
    struct File {
        File() : fd(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {}
        File(const File&) = delete;
        File& operator=(const File&) = delete;
        ~File()
        {
            if (fd >= 0)
                close(fd);
        }

        const int fd;
    };

    std::shared_ptr<File> m_file;
};
