#pragma once

// Makes system calls fail that tests can't make fail in another way.

#include <array>
#include <cstddef>
#include <cstdint>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace Orvik::Tests
{

/// From here on a system call returns `error` to the calling process if the argument with that index has none of
/// `bits`. This can't be undone: only for children.
inline void RefuseSystemCallWithout(long number, unsigned int argument, unsigned int bits, int error)
{
    constexpr auto load = static_cast<std::uint16_t>(BPF_LD | BPF_W | BPF_ABS);
    constexpr auto jumpIfEqual = static_cast<std::uint16_t>(BPF_JMP | BPF_JEQ | BPF_K);
    constexpr auto jumpIfSet = static_cast<std::uint16_t>(BPF_JMP | BPF_JSET | BPF_K);
    constexpr auto result = static_cast<std::uint16_t>(BPF_RET | BPF_K);
    const auto argumentOffset = static_cast<std::uint32_t>(offsetof(seccomp_data, args) + std::size_t{8} * argument);
    std::array<sock_filter, 6> program = {{
        {load, 0, 0, offsetof(seccomp_data, nr)},
        {jumpIfEqual, 0, 3, static_cast<std::uint32_t>(number)},
        {load, 0, 0, argumentOffset},
        {jumpIfSet, 1, 0, bits},
        {result, 0, 0, SECCOMP_RET_ERRNO | static_cast<std::uint32_t>(error)},
        {result, 0, 0, SECCOMP_RET_ALLOW},
    }};
    const sock_fprog filter = {static_cast<unsigned short>(program.size()), program.data()};
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 || prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) != 0)
        _exit(99);
}

/// The same, whatever the arguments are.
inline void RefuseSystemCall(long number, int error)
{
    RefuseSystemCallWithout(number, 0, 0, error);
}

} // namespace Orvik::Tests
