#pragma once

#include <cstdio>
#include <string>

namespace Orvik
{

/// What a case with a server of its own returns when it fails, having said why. Such a case runs in a process of its
/// own, for a process has one connection.
inline int Fail(const std::string& what)
{
    std::fprintf(stderr, "%s\n", what.c_str());
    return 1;
}

} // namespace Orvik
