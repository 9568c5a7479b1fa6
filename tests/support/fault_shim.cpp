// A disk that fails or a machine that dies, at the N-th call that changes something: preloaded into a
// program, it stands before the system calls of files. It counts from where the program calls
// tamloFaultArm(), and acts at call TAMLO_FAULT_AT as TAMLO_FAULT says: "before" and "after" kill the process
// there, a write half done; a number fails the call with that errno, a write after half its bytes, and with
// TAMLO_FAULT_LASTS every call behind it too.
// TAMLO_NO_TMPFILE refuses files without a name, as some file systems do.
#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <string_view>

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

bool armed = false;
long calls = 0;

std::string_view setting(const char* name)
{
    const char* value = std::getenv(name);
    return value ? value : "";
}

/// Counts a call; true when it is the one, or behind it where the fault lasts.
bool isTheOne()
{
    static const long at = std::atol(setting("TAMLO_FAULT_AT").data());
    static const bool lasts = !setting("TAMLO_FAULT_LASTS").empty();
    if (!armed) return false;
    ++calls;
    return calls == at || (lasts && calls > at);
}

[[noreturn]] void die()
{
    ::kill(::getpid(), SIGKILL);
    for (;;) ::pause();
}

/// Runs a call with the fault that is due. half: does a part of the work before it.
template <typename Call, typename Half>
long faulty(const Call& call, const Half& half)
{
    if (!isTheOne()) return call();
    const std::string_view fault = setting("TAMLO_FAULT");
    if (fault == "after") {
        call();
        die();
    }
    half();
    if (fault == "before") die();
    errno = std::atoi(fault.data());
    return -1;
}

template <typename Call>
long faulty(const Call& call)
{
    return faulty(call, [] {});
}

int openAt(int folder, const char* path, int flags, mode_t mode)
{
    if ((flags & O_TMPFILE) == O_TMPFILE && !setting("TAMLO_NO_TMPFILE").empty()) {
        errno = EOPNOTSUPP;
        return -1;
    }
    return static_cast<int>(faulty([&] { return ::syscall(SYS_openat, folder, path, flags, mode); }));
}

mode_t modeOf(int flags, std::va_list& arguments)
{
    return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
}

} // namespace

extern "C" {

void tamloFaultArm(int on)
{
    armed = on != 0;
}

long tamloFaultCalls()
{
    return calls;
}

int open(const char* path, int flags, ...)
{
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return openAt(AT_FDCWD, path, flags, mode);
}

int openat(int folder, const char* path, int flags, ...)
{
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return openAt(folder, path, flags, mode);
}

ssize_t write(int file, const void* bytes, size_t count)
{
    return faulty([&] { return ::syscall(SYS_write, file, bytes, count); },
                  [&] { ::syscall(SYS_write, file, bytes, count / 2); });
}

int fsync(int file)
{
    return static_cast<int>(faulty([&] { return ::syscall(SYS_fsync, file); }));
}

int rename(const char* from, const char* to)
{
    return static_cast<int>(faulty([&] { return ::syscall(SYS_rename, from, to); }));
}

int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags)
{
    return static_cast<int>(
        faulty([&] { return ::syscall(SYS_linkat, fromFolder, from, toFolder, to, flags); }));
}

int unlink(const char* path)
{
    return static_cast<int>(faulty([&] { return ::syscall(SYS_unlink, path); }));
}

int mkdir(const char* path, mode_t mode)
{
    return static_cast<int>(faulty([&] { return ::syscall(SYS_mkdir, path, mode); }));
}

int fchmod(int file, mode_t mode)
{
    return static_cast<int>(faulty([&] { return ::syscall(SYS_fchmod, file, mode); }));
}
}
