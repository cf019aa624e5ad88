// Apart from Exception.cpp: an exception lies below everything, and only its report knows the object that writes it.
#include "Core/System/Error/Exception.h"
#include "Core/System/Error/Handling/ErrorHandling.h"

namespace Orvik::System::Error
{

void Exception::Report()
{
    m_handled = true;
    ErrorHandling::GetInstance().ReportException(*this);
}

} // namespace Orvik::System::Error
