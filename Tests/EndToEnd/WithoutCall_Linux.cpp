// Starts a program that one call of the system is refused to, or more descriptors than a number:
//
//   WithoutCall NUMBER ERROR PROGRAM [ARGUMENTS]
//   WithoutCall descriptors COUNT PROGRAM [ARGUMENTS]
#include "Tests/Support/RefusedSystemCall.h"

#include <cstdlib>
#include <cstring>
#include <sys/resource.h>
#include <unistd.h>

int main(int count, char** arguments)
{
    constexpr int program = 3;
    if (count <= program)
        return 2;
    const long value = std::atol(arguments[2]);
    if (std::strcmp(arguments[1], "descriptors") == 0)
    {
        // Those that a test's own starter has left open would count.
        constexpr unsigned firstOther = 3;
        if (close_range(firstOther, ~0U, 0) != 0)
            return 2;
        const auto most = static_cast<rlim_t>(value);
        const rlimit limit = {most, most};
        if (setrlimit(RLIMIT_NOFILE, &limit) != 0)
            return 2;
    }
    else
    {
        Orvik::Tests::RefuseSystemCall(std::atol(arguments[1]), static_cast<int>(value));
    }
    execv(arguments[program], arguments + program);
    return 127;
}
