#pragma once

// Private to the null half.

#include "Core/Graphics/Renderer/GLContext.h"

namespace Orvik::Graphics::Renderer
{

/// The entry points as recorders, without the one that the recorder is told to lack.
[[nodiscard]] EntryPoints MakeRecordingEntryPoints();

} // namespace Orvik::Graphics::Renderer
