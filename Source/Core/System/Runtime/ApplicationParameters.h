#pragma once

namespace Orvik::System::Runtime
{

class CommandLine;

/// What the entry function hands to `Application::Run`. Nothing here is owned.
struct ApplicationParameters
{
    bool reservedFlag = false;           ///< read by nothing
    bool terminateOtherInstances = true; ///< `Run` ends the older processes of the same executable name
    CommandLine* commandLine = nullptr;  ///< the process's arguments and, later, its options
    void* extension = nullptr;           ///< kept, read by nothing
};

} // namespace Orvik::System::Runtime
