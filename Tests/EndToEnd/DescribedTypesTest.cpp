// The types that register themselves before `main`. Nothing in the program refers to them, so a linker may drop them.
#include "Tests/EndToEnd/ProgramTest.h"

namespace Orvik::Tests
{
namespace
{

class DescribedTypes : public ProgramTest
{
};

TEST_F(DescribedTypes, AreLinkedIntoTheProgram)
{
    const std::string program = ReadText(m_installation.GetProgram());
    for (const char* text : {"{4F723C6F-B0AE-4AC7-94A5-6A92D5DBD05E}", "{F1047C74-8099-42FE-9330-5F2879DA7E5E}",
                             "Orvik::System::Runtime::Execution::Coordinate2"})
        EXPECT_NE(program.find(text), std::string::npos) << text;
}

} // namespace
} // namespace Orvik::Tests
