#include "Tests/Core/Graphics/Renderer/RecordedRenderer.h"

#include <dlfcn.h>
#include <ft2build.h>
#include FT_FREETYPE_H

namespace
{

bool s_isRefused = false;

} // namespace

/// Takes the place of the library's own, which is loaded after the program, and refuses where a test wants it.
FT_Error FT_Init_FreeType(FT_Library* library)
{
    if (s_isRefused)
        return FT_Err_Out_Of_Memory;
    const auto initialize = reinterpret_cast<decltype(&FT_Init_FreeType)>(dlsym(RTLD_NEXT, "FT_Init_FreeType"));
    return initialize(library);
}

namespace Orvik::Tests
{

using FontLibrary = RecordedRenderer;

TEST_F(FontLibrary, ThatCannotBeInitialisedFails)
{
    s_isRefused = true;
    EXPECT_FALSE(m_renderer.Initialize(s_window, "TestClass"));
    s_isRefused = false;
    EXPECT_THAT(m_log.GetLines(),
                testing::ElementsAre("Graphics Error: Failed to initialize freetype library.",
                                     "Graphics Error: Failed to initialize renderer. Debug draw is disabled!"));
    m_log.Clear();
    EXPECT_TRUE(m_renderer.Initialize(s_window, "TestClass"));
    EXPECT_THAT(m_log.GetLines(), testing::IsEmpty());
}

} // namespace Orvik::Tests
