// Starts a program that one call of the system is refused to:
//
//   WithoutCall NUMBER ERROR PROGRAM [ARGUMENTS]
#include "Tests/Support/RefusedSystemCall.h"

#include <cstdlib>

int main(int count, char** arguments)
{
    constexpr int program = 3;
    if (count <= program)
        return 2;
    Orvik::Tests::RefuseSystemCall(std::atol(arguments[1]), std::atoi(arguments[2]));
    execv(arguments[program], arguments + program);
    return 127;
}
