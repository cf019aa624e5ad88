// The main function of tests that need no screen: they run on the null desktop.
#include "Desktops/Desktop.h"
#include "Tests/Support/EnvironmentLocale.h"
#include "Tests/Support/NullDesktop.h"

#include <gtest/gtest.h>

// The C library keeps the list of folders that it has looked for the locale in. Asked for by the leak sanitizer, where
// it is in.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:argz_add_sep\n";
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
    Orvik::Desktops::SetDesktop(Orvik::Tests::NullDesktop::GetInstance());
    return RUN_ALL_TESTS();
}
