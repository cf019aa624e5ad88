#pragma once

#include "Core/System/Error/ErrorHandling.h"
#include "Core/System/Runtime/DirectoryCache.h"
#include "Tests/Core/System/Error/ReportText.h"
#include "Tests/Support/BinaryFile.h"
#include "Tests/Support/ForkedProcess.h"
#include "Tests/Support/TestApplication.h"

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>

// The object belongs to a whole process: each test forks one for it. A child makes the object by touching it, as the
// program does before `main`.
namespace Orvik::System::Error
{

/// The files of a directory by their normalised names, with their normalised contents. Directories don't count.
inline std::map<std::string, std::string> ReadFiles(const std::filesystem::path& directory)
{
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(directory))
    {
        if (!entry.is_regular_file())
            continue;
        files.emplace(Tests::Normalize(entry.path().filename().string()),
                      Tests::Normalize(Tests::ReadText(entry.path())));
    }
    return files;
}

/// How a process ended that ran `function`, and the reports that it left in its working directory.
struct Outcome
{
    Tests::ForkedResult result;
    std::string error;
    std::map<std::string, std::string> files;
};

inline Outcome Observe(const std::function<int()>& function)
{
    Tests::ForkedProcess process(function);
    Outcome outcome;
    outcome.result = process.Wait();
    outcome.error = Tests::Normalize(outcome.result.error);
    outcome.files = ReadFiles(process.GetWorkingDirectory());
    return outcome;
}

/// Makes the working directory the home of an application called "TestApplication" and initialises the reports for
/// it, as a run does.
inline std::unique_ptr<Tests::TestApplication> StartApplication()
{
    setenv("HOME", std::filesystem::current_path().c_str(), 1);
    Runtime::DirectoryCache::GetInstance().Initialize();
    auto application = std::make_unique<Tests::TestApplication>();
    application->m_configCache.Initialize(nullptr);
    if (!ErrorHandling::GetInstance().Initialize(application.get()))
        std::_Exit(99);
    return application;
}

inline const SourceLocation s_location("file.cpp", 7, "function");

inline int FailSomeAssertion()
{
    ErrorHandling::GetInstance();
    System::Error::FailAssertion("1 + 1 == 3", "Sums must be wrong.", "file.cpp", s_location);
    return 0;
}

} // namespace Orvik::System::Error
