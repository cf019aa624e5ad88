// What libFuzzer calls. The first argument names the target: "--target=LoadPng". libFuzzer ignores arguments that begin
// like that.
#include "Tests/Fuzz/Targets.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace
{

const Orvik::Fuzz::Target* s_target = nullptr;

} // namespace

extern "C" int LLVMFuzzerInitialize(int* count, char*** arguments);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerInitialize(int* count, char*** arguments)
{
    constexpr std::string_view prefix = "--target=";
    for (int index = 1; index < *count; ++index)
    {
        const std::string_view argument((*arguments)[index]);
        if (argument.starts_with(prefix))
            s_target = Orvik::Fuzz::FindTarget(argument.substr(prefix.size()).data());
    }
    if (s_target == nullptr)
    {
        std::fprintf(stderr, "usage: %s --target=NAME [arguments of libFuzzer]\nTargets:", (*arguments)[0]);
        for (const Orvik::Fuzz::Target& target : Orvik::Fuzz::GetTargets())
            std::fprintf(stderr, " %s", target.name);
        std::fputc('\n', stderr);
        std::exit(2);
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    s_target->run({data, size});
    return 0;
}
