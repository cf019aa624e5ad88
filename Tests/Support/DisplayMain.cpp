// The main function of tests that need a screen: they get a virtual one of their own.
#include "Application/DesktopChoice.h"
#include "Tests/Support/EnvironmentLocale.h"
#include "Tests/Support/VirtualDisplay.h"

#include <cstdlib>
#include <gtest/gtest.h>

// The software renderer keeps memory to itself until the process ends, and replies of the server: newer versions of it
// (libgallium) lose 49 pieces, 2,352 bytes in all, with each context that they make. The C library keeps the list of
// folders that it has looked for the locale in. Asked for by the leak sanitizer, where it is in.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:swrast_dri.so\nleak:libgallium-\nleak:libEGL_mesa.so\nleak:libLLVM\nleak:libxcb.so\n"
           "leak:argz_add_sep\n";
}

// Nor a word of it: tests look at what ends up on the error stream.
extern "C" const char* __lsan_default_options();
extern "C" const char* __lsan_default_options()
{
    return "print_suppressions=0";
}

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    Orvik::Tests::UseEnvironmentLocale();
    if (testing::GTEST_FLAG(list_tests))
        return RUN_ALL_TESTS();
    const Orvik::Tests::VirtualDisplay display;
    setenv("DISPLAY", display.GetName().c_str(), 1);
    // Whoever runs the tests may sit at a Wayland desktop.
    unsetenv("WAYLAND_DISPLAY");
    unsetenv("ORVIK_DESKTOP");
    Orvik::Desktops::SetDesktop(Orvik::Desktops::ChooseDesktop().desktop);
    return RUN_ALL_TESTS();
}
