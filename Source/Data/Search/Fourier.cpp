#include "Data/Search/Fourier.h"

#include <algorithm>
#include <cmath>
#include <kissfft.hh>

namespace Orvik::Data
{
namespace
{

using Complex = std::complex<float>;
using Plan = kissfft<float>;

/// Transforms the first `count` of the rows, which lie one after the other.
void TransformRows(const Plan& plan, ComplexArea& rows, std::size_t length, std::size_t count)
{
    std::vector<Complex> row(length);
    for (std::size_t i = 0; i < count; ++i)
    {
        Complex* const begin = rows.data() + i * length;
        plan.transform(begin, row.data());
        std::copy(row.begin(), row.end(), begin);
    }
}

/// Makes rows of columns, block by block, so that both stay in the cache. The first `usedRows` rows are read.
void Transpose(const ComplexArea& from, ComplexArea& to, std::size_t width, std::size_t height, std::size_t usedRows)
{
    constexpr std::size_t block = 16;
    for (std::size_t top = 0; top < usedRows; top += block)
        for (std::size_t left = 0; left < width; left += block)
            for (std::size_t x = left; x < std::min(left + block, width); ++x)
                for (std::size_t y = top; y < std::min(top + block, usedRows); ++y)
                    to[x * height + y] = from[y * width + x];
}

} // namespace

struct Fourier::Plans
{
    Plan across;
    Plan down;
    Plan acrossBack;
    Plan downBack;
};

Fourier::Fourier(std::size_t width, std::size_t height)
    : m_width(width),
      m_height(height),
      m_plans(std::make_unique<const Plans>(
          Plans{Plan(width, false), Plan(height, false), Plan(width, true), Plan(height, true)}))
{
}

Fourier::~Fourier() = default;

void Fourier::Forward(ComplexArea& area, ComplexArea& spectrum, std::size_t usedRows) const
{
    spectrum.assign(GetSize(), Complex());
    TransformRows(m_plans->across, area, m_width, usedRows);
    Transpose(area, spectrum, m_width, m_height, usedRows);
    TransformRows(m_plans->down, spectrum, m_height, m_width);
}

void Fourier::Inverse(ComplexArea& spectrum, ComplexArea& area, std::size_t wantedRows) const
{
    area.resize(GetSize());
    TransformRows(m_plans->downBack, spectrum, m_height, m_width);
    Transpose(spectrum, area, m_height, m_width, m_width);
    TransformRows(m_plans->acrossBack, area, m_width, wantedRows);
}

} // namespace Orvik::Data
