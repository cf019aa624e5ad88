#include "Core/System/Runtime/JsonPattern.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace Orvik::System::Runtime
{
namespace
{

constexpr std::size_t s_longestPattern = 1'000;

/// What a quantifier would apply to.
enum class Atom
{
    None,
    Character, ///< or a class of them
    Group,
    Repeated,
};

/// Between two parentheses, or the whole pattern.
struct PatternGroup
{
    bool hasAtom = false;             ///< in the alternative that is being read
    bool mayBeEmpty = true;           ///< so far, the same alternative
    bool hasChoice = false;           ///< more than one alternative
    bool mayOneOfThemBeEmpty = false; ///< of those that were read
};

class PatternReader
{
public:
    explicit PatternReader(std::string_view pattern) : m_rest(pattern) {}

    [[nodiscard]] bool IsSound()
    {
        while (!m_rest.empty())
        {
            if (!ReadPart())
                return false;
        }
        return m_groups.size() == 1 && EndGroup();
    }

private:
    [[nodiscard]] char Take()
    {
        const char character = m_rest.front();
        m_rest.remove_prefix(1);
        return character;
    }

    [[nodiscard]] bool ReadPart()
    {
        switch (Take())
        {
        case '^':
        case '$':
            FinishAtom();
            return true;
        case '|':
            m_groups.back().hasChoice = true;
            return EndAlternative();
        case '(':
            FinishAtom();
            m_groups.emplace_back();
            return true;
        case ')':
            return LeaveGroup();
        case '?':
            return Repeat(m_atom == Atom::Character || (m_atom == Atom::Group && !m_mayAtomBeEmpty), true);
        case '*':
            return Repeat(m_atom == Atom::Character, true);
        case '+':
            return Repeat(m_atom == Atom::Character, false);
        case '{':
            return false;
        case '[':
            BeginAtom(Atom::Character, false);
            return SkipClass();
        case '\\':
            BeginAtom(Atom::Character, false);
            return SkipEscape();
        default:
            BeginAtom(Atom::Character, false);
            return true;
        }
    }

    void BeginAtom(Atom atom, bool mayBeEmpty)
    {
        FinishAtom();
        m_atom = atom;
        m_mayAtomBeEmpty = mayBeEmpty;
    }

    void FinishAtom()
    {
        if (m_atom == Atom::None)
            return;
        m_groups.back().hasAtom = true;
        m_groups.back().mayBeEmpty &= m_mayAtomBeEmpty;
        m_atom = Atom::None;
    }

    [[nodiscard]] bool Repeat(bool isAllowed, bool mayBeEmpty)
    {
        m_atom = Atom::Repeated;
        m_mayAtomBeEmpty = mayBeEmpty;
        return isAllowed;
    }

    [[nodiscard]] bool EndAlternative()
    {
        FinishAtom();
        PatternGroup& group = m_groups.back();
        const bool hadAtom = group.hasAtom;
        group.mayOneOfThemBeEmpty |= group.mayBeEmpty;
        group.hasAtom = false;
        group.mayBeEmpty = true;
        return hadAtom;
    }

    [[nodiscard]] bool EndGroup()
    {
        return EndAlternative() && !(m_groups.back().hasChoice && m_groups.back().mayOneOfThemBeEmpty);
    }

    [[nodiscard]] bool LeaveGroup()
    {
        if (m_groups.size() == 1 || !EndGroup())
            return false;
        const bool mayBeEmpty = m_groups.back().mayOneOfThemBeEmpty;
        m_groups.pop_back();
        m_atom = Atom::Group;
        m_mayAtomBeEmpty = mayBeEmpty;
        return true;
    }

    [[nodiscard]] bool SkipEscape()
    {
        if (m_rest.empty())
            return false;
        m_rest.remove_prefix(1);
        return true;
    }

    [[nodiscard]] bool SkipClass()
    {
        for (std::size_t length = 0; !m_rest.empty(); ++length)
        {
            const char character = Take();
            if (character == ']')
                return length > 0;
            if (character == '\\' && !SkipEscape())
                return false;
        }
        return false;
    }

    std::string_view m_rest;
    std::vector<PatternGroup> m_groups{1};
    Atom m_atom = Atom::None;
    bool m_mayAtomBeEmpty = false;
};

} // namespace

bool IsPatternSound(std::string_view pattern)
{
    const auto isAscii = [](char character)
    { return character > '\0' && static_cast<unsigned char>(character) < 0x80; };
    return pattern.size() <= s_longestPattern && std::all_of(pattern.begin(), pattern.end(), isAscii) &&
           PatternReader(pattern).IsSound();
}

} // namespace Orvik::System::Runtime
