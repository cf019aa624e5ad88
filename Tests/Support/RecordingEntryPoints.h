#pragma once

#include "Core/Graphics/Renderer/GLContext.h"

namespace Orvik::Tests
{

/// The entry points as recorders, without the one that the recorder is to lack.
[[nodiscard]] Graphics::Renderer::EntryPoints MakeRecordingEntryPoints();

} // namespace Orvik::Tests
