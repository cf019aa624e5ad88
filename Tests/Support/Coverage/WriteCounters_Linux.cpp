// In a build that counts the lines that run: the counters are written before a process ends in a way that leaves out
// what is registered for its end. The linker sends the calls here. A fault that nobody raised, and SIGKILL, still lose
// them.
#include <csignal>
#include <cstdlib>

extern "C"
{

    void __gcov_dump();
    void __gcov_reset();

    [[noreturn]] void __real_abort();
    [[noreturn]] void __real__exit(int code);
    [[noreturn]] void __real__Exit(int code);
    int __real_raise(int signal);
    [[noreturn]] void __real___assert_fail(const char* condition, const char* file, unsigned int line,
                                           const char* function);

    static void WriteCounters()
    {
        __gcov_dump();
        __gcov_reset(); // or what runs from here on would never be written
    }

    [[noreturn]] void __wrap_abort()
    {
        WriteCounters();
        __real_abort();
    }

    [[noreturn]] void __wrap__exit(int code)
    {
        WriteCounters();
        __real__exit(code);
    }

    [[noreturn]] void __wrap__Exit(int code)
    {
        WriteCounters();
        __real__Exit(code);
    }

    [[noreturn]] void __wrap___assert_fail(const char* condition, const char* file, unsigned int line,
                                           const char* function)
    {
        WriteCounters();
        __real___assert_fail(condition, file, line, function);
    }

    int __wrap_raise(int signal)
    {
        WriteCounters();
        return __real_raise(signal);
    }
}
