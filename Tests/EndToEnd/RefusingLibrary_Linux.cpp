// A library that is loaded into a program before it begins, and refuses it one function of another library. Only the
// program's own calls are meant, not those between libraries. The environment says which:
//
//   ORVIK_REFUSED       NAME WAY VALUE ERROR FROM COUNT [ARGUMENT TEXT]
//   ORVIK_REFUSED_TOO   another one
//   ORVIK_REFUSED_MARK  a file that is made at the first refusal of the first one
//
// WAY is "returns": VALUE is returned, with `errno` set to ERROR; "fails": the same after the call; "replaces": the
// call is made, with VALUE in place of its second argument; or "throws": a lack of memory is thrown. The first call
// that is refused is number FROM, and COUNT are. With an ARGUMENT, only calls count in whose argument of that number
// TEXT is found.
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <elf.h>
#include <fcntl.h>
#include <iterator>
#include <link.h>
#include <new>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace
{

// The call is handed on with as many arguments as a call of any of the functions has. What a function doesn't take does
// no harm: the caller removes it.
using Function = long (*)(long, long, long, long, long, long, long, long, long, long, long, long);

enum class Way
{
    Returns,
    Fails,
    Replaces,
    Throws,
};

struct Refusal
{
    Function original = nullptr;
    Way way = Way::Returns;
    long value = 0;
    int error = 0;
    int from = 1;
    int count = 0;
    int argument = -1;
    char text[64] = {};
    std::atomic<int> calls = 0;
};

Refusal s_refusals[2];
const char* s_mark = nullptr;

bool IsMeant(const Refusal& refusal, long first, long second)
{
    if (refusal.argument < 0)
        return true;
    const long argument = refusal.argument == 0 ? first : second;
    if (refusal.text[0] == '=')
        return argument == std::atol(refusal.text + 1);
    return argument != 0 && std::strstr(reinterpret_cast<const char*>(argument), refusal.text) != nullptr;
}

// By the system's own calls: the functions may be the ones that are refused.
void Mark()
{
    static std::atomic<bool> s_isMarked = false;
    if (s_mark == nullptr || s_isMarked.exchange(true))
        return;
    constexpr int forTheUser = 0600;
    const long file = syscall(SYS_openat, AT_FDCWD, s_mark, O_WRONLY | O_CREAT | O_CLOEXEC, forTheUser);
    syscall(SYS_close, file);
}

template <std::size_t Index>
long Intercept(long a, long b, long c, long d, long e, long f, long g, long h, long i, long j, long k, long l)
{
    Refusal& refusal = s_refusals[Index];
    if (!IsMeant(refusal, a, b))
        return refusal.original(a, b, c, d, e, f, g, h, i, j, k, l);
    const int call = ++refusal.calls;
    if (call < refusal.from || call - refusal.from >= refusal.count)
        return refusal.original(a, b, c, d, e, f, g, h, i, j, k, l);
    if (Index == 0)
        Mark();
    if (refusal.way == Way::Throws)
        throw std::bad_alloc();
    if (refusal.way == Way::Replaces)
        return refusal.original(a, refusal.value, c, d, e, f, g, h, i, j, k, l);
    if (refusal.way == Way::Fails)
        refusal.original(a, b, c, d, e, f, g, h, i, j, k, l);
    errno = refusal.error;
    return refusal.value;
}

/// What is looked for in the program.
struct Search
{
    const char* name;
    Refusal* refusal;
    Function replacement;
};

/// What the loader has made of a program that it has loaded.
struct Tables
{
    const char* names = nullptr;
    const ElfW(Sym) * symbols = nullptr;
    const ElfW(Rela) * entries[2] = {};
    std::size_t bytes[2] = {};
};

Tables FindTables(const dl_phdr_info& program)
{
    Tables tables;
    for (int index = 0; index < program.dlpi_phnum; ++index)
    {
        const ElfW(Phdr)& header = program.dlpi_phdr[index];
        if (header.p_type != PT_DYNAMIC)
            continue;
        const auto* entry = reinterpret_cast<const ElfW(Dyn)*>(program.dlpi_addr + header.p_vaddr);
        for (; entry->d_tag != DT_NULL; ++entry)
        {
            // Some loaders leave the addresses as they are in the file.
            const ElfW(Addr) address =
                entry->d_un.d_ptr < program.dlpi_addr ? program.dlpi_addr + entry->d_un.d_ptr : entry->d_un.d_ptr;
            switch (entry->d_tag)
            {
            case DT_STRTAB:
                tables.names = reinterpret_cast<const char*>(address);
                break;
            case DT_SYMTAB:
                tables.symbols = reinterpret_cast<const ElfW(Sym)*>(address);
                break;
            case DT_RELA:
                tables.entries[0] = reinterpret_cast<const ElfW(Rela)*>(address);
                break;
            case DT_RELASZ:
                tables.bytes[0] = entry->d_un.d_val;
                break;
            case DT_JMPREL:
                tables.entries[1] = reinterpret_cast<const ElfW(Rela)*>(address);
                break;
            case DT_PLTRELSZ:
                tables.bytes[1] = entry->d_un.d_val;
                break;
            default:
                break;
            }
        }
    }
    return tables;
}

/// Puts our function where the program finds the address of the other one.
void Replace(const Search& search, ElfW(Addr) place)
{
    const auto page = static_cast<ElfW(Addr)>(sysconf(_SC_PAGESIZE));
    void* const start = reinterpret_cast<void*>(place / page * page);
    if (mprotect(start, page, PROT_READ | PROT_WRITE) != 0)
        return;
    auto* const slot = reinterpret_cast<Function*>(place);
    search.refusal->original = *slot;
    *slot = search.replacement;
}

int VisitProgram(dl_phdr_info* program, std::size_t /*size*/, void* data)
{
    const Search& search = *static_cast<const Search*>(data);
    const Tables tables = FindTables(*program);
    for (int kind = 0; kind < 2; ++kind)
    {
        const std::size_t count = tables.bytes[kind] / sizeof(ElfW(Rela));
        for (std::size_t index = 0; index < count; ++index)
        {
            const ElfW(Rela)& entry = tables.entries[kind][index];
            const auto symbol = static_cast<std::size_t>(entry.r_info >> 32);
            const char* const found = tables.names + tables.symbols[symbol].st_name;
            if (std::strcmp(found, search.name) == 0)
                Replace(search, program->dlpi_addr + entry.r_offset);
        }
    }
    return 1; // the first is the program; the others stay as they are
}

void Refuse(const char* variable, Refusal& refusal, Function replacement)
{
    const char* const wanted = std::getenv(variable);
    if (wanted == nullptr)
        return;
    char name[64] = {};
    char way[16] = {};
    if (std::sscanf(wanted, "%63s %15s %ld %d %d %d %d %63s", name, way, &refusal.value, &refusal.error, &refusal.from,
                    &refusal.count, &refusal.argument, refusal.text) < 6)
        std::abort();
    const Way ways[] = {Way::Throws, Way::Fails, Way::Replaces, Way::Returns};
    const char* const names[] = {"throws", "fails", "replaces", "returns"};
    for (std::size_t index = 0; index < std::size(ways); ++index)
        if (std::strcmp(way, names[index]) == 0)
            refusal.way = ways[index];
    Search search = {name, &refusal, replacement};
    dl_iterate_phdr(&VisitProgram, &search);
}

[[gnu::constructor]] void Begin()
{
    s_mark = std::getenv("ORVIK_REFUSED_MARK");
    Refuse("ORVIK_REFUSED", s_refusals[0], &Intercept<0>);
    Refuse("ORVIK_REFUSED_TOO", s_refusals[1], &Intercept<1>);
}

} // namespace
