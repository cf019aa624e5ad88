// The main function of tests that need a Wayland compositor: they get one without a screen of their own, where it is
// installed.
#include "Tests/Support/Desktop/NestedCompositor.h"
#include "Tests/Support/EnvironmentLocale.h"

#include <cstdlib>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <optional>

// Libraries stay loaded to the end, so that the leak sanitizer can say whose memory it is.
int dlclose(void* /*handle*/) noexcept
{
    return 0;
}

// The C library keeps the list of folders that it has looked for the locale in, and the software renderer memory until
// the process ends. Asked for by the leak sanitizer, where it is in.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:argz_add_sep\nleak:swrast_dri.so\nleak:libgallium-\nleak:libEGL_mesa.so\nleak:libLLVM\n";
}

// Nor a word of it: tests look at what ends up on the error stream.
extern "C" const char* __lsan_default_options();
extern "C" const char* __lsan_default_options()
{
    return "print_suppressions=0";
}

int main(int argc, char** argv)
{
    using namespace Orvik::Tests;
    testing::InitGoogleTest(&argc, argv);
    UseEnvironmentLocale();
    if (testing::GTEST_FLAG(list_tests))
        return RUN_ALL_TESTS();
    unsetenv("WAYLAND_DISPLAY");
    unsetenv("DISPLAY");
    std::optional<NestedCompositor> compositor;
    if (!FindReasonToSkip(CompositorKind::HeadlessSway))
    {
        compositor.emplace(CompositorOptions{.kind = CompositorKind::HeadlessSway, .configuration = {}});
        for (const auto& [name, value] : compositor->GetEnvironment())
            setenv(name.c_str(), value.c_str(), 1);
    }
    return RUN_ALL_TESTS();
}
