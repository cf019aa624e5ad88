// The rows of FunctionRows.cpp for an instruction counter, which looks at `RunCounted` alone
// (Scripts/count-instructions.py):
//
//   CountedFunctions             prints the names of the rows
//   CountedFunctions --compiler  prints the compiler that built it, such as GNU 12
//   CountedFunctions ROW         does the row's work uncounted, for what the first time alone costs, and then counted
#include "Benchmarks/FunctionRows.h"

#include <cstdio>
#include <string_view>

namespace
{

using Orvik::Benchmarks::FunctionRow;

} // namespace

extern "C" [[gnu::noinline]] void RunCounted(const std::function<void()>& work, int times)
{
    for (int count = 0; count < times; ++count)
        work();
    asm volatile(""); // what follows a call keeps it from becoming a jump
}

int main(int argc, char** argv)
{
    const std::vector<FunctionRow> rows = Orvik::Benchmarks::MakeFunctionRows();
    if (argc == 1)
    {
        for (const FunctionRow& row : rows)
            std::puts(row.name.c_str());
        return 0;
    }
    const std::string_view name = argv[1];
    if (name == "--compiler")
        return std::puts(ORVIK_COMPILER) < 0 ? 1 : 0;
    for (const FunctionRow& row : rows)
    {
        if (row.name != name)
            continue;
        const std::function<void()> work = row.prepare();
        work();
        RunCounted(work, row.countedTimes);
        return 0;
    }
    std::fputs("usage: CountedFunctions [--compiler | ROW]\n", stderr);
    return 2;
}
