#include "Core/System/Error/Exception.h"

namespace Orvik::System::Error
{

const ErrorCode& Exception::GetErrorCode(ErrorCode& code) const
{
    code = {};
    return code;
}

const char* Exception::GetTypeName() const
{
    return "Orvik::Exception";
}

void Exception::WriteMessage(std::ostream& stream) const
{
    stream << "No message provided.";
}

void SystemErrorDetails::WriteLines(std::ostream& stream) const
{
    if (systemName != nullptr)
        stream << "\t\t System name: " << systemName << "\n";
    if (systemGuid != GUID())
        stream << "\t\t GUID: " << systemGuid.ToString() << "\n";
}

void SystemCreationErrorDetails::WriteMessage(std::ostream& stream) const
{
    stream << "Creation of system failed.\n";
    WriteLines(stream);
}

void SystemInitializationErrorDetails::WriteMessage(std::ostream& stream) const
{
    stream << "Initialization of system failed.\n";
    WriteLines(stream);
}

} // namespace Orvik::System::Error
