// Not in Exception.cpp: an exception is in the lowest layer, and only its report needs the object that writes it.
#include "Core/System/Error/ErrorHandling.h"
#include "Core/System/Error/Exception.h"

namespace Orvik::System::Error
{

void Exception::Report()
{
    m_handled = true;
    ErrorHandling::GetInstance().ReportException(*this);
}

} // namespace Orvik::System::Error
