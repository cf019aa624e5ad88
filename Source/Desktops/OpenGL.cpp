#include "Desktops/OpenGL.h"

#include <string_view>

namespace Orvik::Desktops
{

OpenGLFunction FindLibraryFunction(const char* name)
{
    const std::string_view wanted(name);
#define ORVIK_FIND_FUNCTION(Type, function)                                                                            \
    if (wanted == #function)                                                                                           \
        return reinterpret_cast<OpenGLFunction>(&::function);
    ORVIK_FOR_EACH_LIBRARY_FUNCTION(ORVIK_FIND_FUNCTION)
#undef ORVIK_FIND_FUNCTION
    return nullptr;
}

} // namespace Orvik::Desktops
