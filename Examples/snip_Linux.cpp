// One selection for a program: starts SnipBench, waits for it, and reads its object, its files and its code. This is
// the way on Linux, with nothing but the standard library and the system's:
//
//   c++ -std=c++20 -o snip snip_Linux.cpp
//   ./snip [-l SECONDS] PROGRAM [options of SnipBench]
//
// Prints the path of the image and its size. Ends with 0; with 1 if nothing was selected or saved; with 124 if the
// limit of time passed; with 127 if the program can't be started, 2 if the call is wrong; else as SnipBench did. The
// image stays in a new temporary folder.
#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <optional>
#include <poll.h>
#include <regex>
#include <spawn.h>
#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace
{

namespace fs = std::filesystem;

constexpr int s_nothingSelected = 1;
constexpr int s_wrongUse = 2;
constexpr int s_limitPassed = 124;
constexpr int s_notStarted = 127;
constexpr int s_interrupted = 130;

const std::map<std::string, std::string> s_causes = {
    {"Wrong Parameter(s)", "an option is wrong, or the region isn't within the picture"},
    {"Failed to load file", "the picture can't be read or shown"},
    {"Failed to initialize systems", "there is no display, or none of that name"},
    {"Failed to create window", "the overlay can't be shown; the log says why"},
    {"Failed to initialize renderer", "the overlay can't be shown; the log says why"},
};

/// Whether Ctrl+C was pressed.
volatile std::sig_atomic_t s_isInterrupted = 0;

/// What keeps the program from being started.
class StartError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

struct Run
{
    int code = 0; ///< as a shell sees it
    bool isSignal = false;
    bool isLate = false;
    std::string output;
};

/// Starts the program with its standard output in a pipe, whose other end is the second value.
std::pair<pid_t, int> Start(const std::vector<std::string>& arguments)
{
    std::array<int, 2> ends = {};
    if (pipe(ends.data()) != 0)
        throw StartError("There is no pipe.");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, ends[0]);
    posix_spawn_file_actions_addclose(&actions, ends[1]);
    std::vector<char*> texts;
    for (const std::string& argument : arguments)
        texts.push_back(const_cast<char*>(argument.c_str()));
    texts.push_back(nullptr);
    pid_t process = 0;
    const int error = posix_spawnp(&process, texts[0], &actions, nullptr, texts.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    if (error != 0)
        throw StartError(arguments[0] + " can't be started.");
    return {process, ends[0]};
}

/// Reads until the program closes its output. After the limit, and after Ctrl+C, it is asked to end; a file that is
/// being written is finished.
Run Wait(pid_t process, int output, std::chrono::seconds limit)
{
    Run run;
    const auto end = std::chrono::steady_clock::now() + limit;
    std::array<char, 4096> buffer = {};
    bool isAsked = false;
    for (ssize_t size = 1; size > 0;)
    {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now()).count();
        pollfd wanted = {output, POLLIN, 0};
        if (!isAsked)
        {
            run.isLate = poll(&wanted, 1, static_cast<int>(std::max<long>(left, 0))) == 0;
            isAsked = run.isLate || s_isInterrupted != 0;
            if (isAsked)
                kill(process, SIGTERM);
        }
        size = read(output, buffer.data(), buffer.size());
        run.output.append(buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    }
    close(output);
    int status = 0;
    waitpid(process, &status, 0);
    run.isSignal = WIFSIGNALED(status);
    run.code = run.isSignal ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
    return run;
}

/// The name in the object at the end of standard output; nothing if a fault stopped the run.
std::optional<std::string> ReadName(const std::string& output)
{
    static const std::regex s_object(R"re(\n?\{\n    "name": "(.*)",\n    "code": (-?\d+)\n\}\n$)re");
    std::smatch match;
    if (!std::regex_search(output, match, s_object))
        return std::nullopt;
    return match[1];
}

std::string ReadNumber(const std::string& text, const std::string& member)
{
    std::smatch match;
    std::regex_search(text, match, std::regex("\"" + member + "\": (\\d+)"));
    return match[1];
}

/// A new folder, which goes again unless it is kept.
class Folder
{
public:
    Folder()
    {
        if (mkdtemp(m_path.data()) == nullptr)
            throw std::runtime_error("There is no temporary folder.");
    }
    ~Folder()
    {
        std::error_code ignored;
        if (!m_isKept)
            fs::remove_all(m_path, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    [[nodiscard]] const std::string& GetPath() const { return m_path; }
    void Keep() { m_isKept = true; }

private:
    std::string m_path = (fs::temp_directory_path() / "snip-XXXXXX").string();
    bool m_isKept = false;
};

/// Prints what there is in the folder, if there is something.
int PrintSelection(const fs::path& folder)
{
    // Both files have the same name. The JSON file comes last: where it is, the image is whole.
    for (const auto& meta : fs::directory_iterator(folder))
    {
        if (meta.path().extension() != ".json")
            continue;
        std::ifstream stream(meta.path());
        const std::string text{std::istreambuf_iterator<char>(stream), {}};
        for (const auto& image : fs::directory_iterator(folder))
            if (image.path().stem() == meta.path().stem() && image.path() != meta.path())
                std::cout << image.path().string() << ' ' << ReadNumber(text, "width") << 'x'
                          << ReadNumber(text, "height") << '\n';
        return EXIT_SUCCESS;
    }
    std::cerr << (fs::is_empty(folder) ? "Nothing was selected.\n" : "The selection couldn't be saved.\n");
    return s_nothingSelected;
}

int Snip(std::vector<std::string> arguments, std::chrono::seconds limit)
{
    Folder folder;
    const std::vector<std::string> own = {"-s", "true", "-o", folder.GetPath()};
    arguments.insert(arguments.begin() + 1, own.begin(), own.end());
    std::signal(SIGINT, [](int) { s_isInterrupted = 1; }); // the folder has to go before the end
    const auto [process, output] = Start(arguments);
    const Run run = Wait(process, output, limit);
    if (s_isInterrupted != 0)
        return s_interrupted;
    if (run.isLate)
        std::cerr << "No selection within " << limit.count() << " seconds.\n";
    else if (const auto name = ReadName(run.output); name && run.code != 0)
        std::cerr << *name << ": " << s_causes.at(*name) << ".\n";
    else if (run.isSignal && run.code != 128 + SIGABRT)
        std::cerr << "Ended by signal " << run.code - 128 << ".\n";
    else if (run.code == 128 + SIGABRT)
        std::cerr << "An error; ~/.orvik/Logs may say more.\n";
    else if (run.code != 0)
        std::cerr << "Ended with " << run.code << ".\n";
    else
    {
        const int code = PrintSelection(folder.GetPath());
        if (code == EXIT_SUCCESS)
            folder.Keep();
        return code;
    }
    return run.isLate ? s_limitPassed : run.code;
}

/// Whole seconds, below a million; 0 if the text is anything else.
std::chrono::seconds ReadLimit(const std::string& text)
{
    int seconds = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
    const bool isWhole = error == std::errc() && stop == text.data() + text.size();
    return std::chrono::seconds(isWhole && seconds < 1'000'000 ? seconds : 0);
}

} // namespace

int main(int argc, char** argv)
{
    std::vector<std::string> arguments(argv + 1, argv + argc);
    std::chrono::seconds limit{60};
    if (!arguments.empty() && arguments[0] == "-l")
    {
        limit = ReadLimit(arguments.size() > 1 ? arguments[1] : "");
        arguments.erase(arguments.begin(), arguments.begin() + std::min<std::ptrdiff_t>(std::ssize(arguments), 2));
    }
    if (arguments.empty() || limit <= limit.zero())
    {
        std::cerr << "usage: snip [-l SECONDS] PROGRAM [options of SnipBench]\n";
        return s_wrongUse;
    }
    try
    {
        return Snip(std::move(arguments), limit);
    }
    catch (const StartError& error)
    {
        std::cerr << error.what() << '\n';
        return s_notStarted;
    }
    catch (const std::exception& exception)
    {
        std::cerr << exception.what() << '\n';
        return EXIT_FAILURE;
    }
}
