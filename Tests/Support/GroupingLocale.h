#pragma once

#include <locale>
#include <string>

namespace Orvik::Tests
{

/// While it lives, the process has a locale that writes 1234567 as "1.23.45.67" and a half as "0,5".
class GroupingLocale
{
public:
    GroupingLocale() : m_previous(std::locale::global(std::locale(std::locale::classic(), new Numbers))) {}
    ~GroupingLocale() { std::locale::global(m_previous); }
    GroupingLocale(const GroupingLocale&) = delete;
    GroupingLocale& operator=(const GroupingLocale&) = delete;

private:
    class Numbers final : public std::numpunct<char>
    {
        [[nodiscard]] char do_thousands_sep() const override { return '.'; }
        [[nodiscard]] char do_decimal_point() const override { return ','; }
        [[nodiscard]] std::string do_grouping() const override { return "\2"; }
    };

    std::locale m_previous;
};

} // namespace Orvik::Tests
