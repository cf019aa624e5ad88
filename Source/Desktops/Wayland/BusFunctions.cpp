#include "Desktops/Wayland/BusFunctions.h"

#include "Core/System/Error/Assertion.h"

#include <dlfcn.h>

namespace Orvik::Desktops::Wayland
{
namespace
{

constexpr const char* s_library = "libsystemd.so.0";

std::string GetLinkError()
{
    const char* const error = dlerror();
    return error != nullptr ? error : "unknown error";
}

/// Looks functions up, and notes if one isn't there.
class Finder
{
public:
    explicit Finder(void* library) : m_library(library) {}

    template <typename Function>
    Finder& Find(const char* name, Function& function)
    {
        function = reinterpret_cast<Function>(dlsym(m_library, name));
        m_isComplete = m_isComplete && function != nullptr;
        return *this;
    }

    [[nodiscard]] bool IsComplete() const { return m_isComplete; }

private:
    void* m_library;
    bool m_isComplete = true;
};

/// What a look for the library has come to.
struct Search
{
    std::optional<BusFunctions> functions;
    std::string failure;
};

// Once for the process: a library that is loaded stays, and one that isn't there isn't looked for again and again.
const Search& GetSearch()
{
    static const Search s_search = []
    {
        Search search;
        search.functions = LoadBusFunctions(s_library, search.failure);
        return search;
    }();
    return s_search;
}

} // namespace

std::optional<BusFunctions> LoadBusFunctions(const char* library, std::string& failure)
{
    void* const handle = dlopen(library, RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr)
    {
        failure = "the library for the session's message bus can't be loaded: " + GetLinkError();
        return std::nullopt;
    }
    BusFunctions functions;
    Finder finder(handle);
    finder.Find("sd_bus_open_user", functions.openUser)
        .Find("sd_bus_is_ready", functions.isReady)
        .Find("sd_bus_close_unref", functions.closeUnref)
        .Find("sd_bus_get_unique_name", functions.getUniqueName)
        .Find("sd_bus_process", functions.process)
        .Find("sd_bus_wait", functions.wait)
        .Find("sd_bus_send", functions.send)
        .Find("sd_bus_call_async", functions.callAsync)
        .Find("sd_bus_match_signal_async", functions.matchSignalAsync)
        .Find("sd_bus_slot_unref", functions.slotUnref)
        .Find("sd_bus_message_new_method_call", functions.newMethodCall)
        .Find("sd_bus_message_ref", functions.messageRef)
        .Find("sd_bus_message_unref", functions.messageUnref)
        .Find("sd_bus_message_get_error", functions.getError)
        .Find("sd_bus_message_set_auto_start", functions.setAutoStart)
        .Find("sd_bus_message_set_expect_reply", functions.setExpectReply)
        .Find("sd_bus_message_append", functions.append)
        .Find("sd_bus_message_read", functions.read)
        .Find("sd_bus_message_skip", functions.skip)
        .Find("sd_bus_message_peek_type", functions.peekType)
        .Find("sd_bus_message_enter_container", functions.enterContainer)
        .Find("sd_bus_message_exit_container", functions.exitContainer);
    if (finder.IsComplete())
        return functions;
    failure = std::string("the library for the session's message bus lacks functions: ") + library;
    return std::nullopt;
}

const BusFunctions* FindBusFunctions(std::string& failure)
{
    const Search& search = GetSearch();
    if (search.functions)
        return &*search.functions;
    failure = search.failure;
    return nullptr;
}

const BusFunctions& GetBusFunctions()
{
    const Search& search = GetSearch();
    ORVIK_ASSERT(search.functions.has_value(), "The bus must have been opened.");
    return *search.functions;
}

} // namespace Orvik::Desktops::Wayland
