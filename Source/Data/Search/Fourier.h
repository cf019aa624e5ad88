#pragma once

#include <complex>
#include <cstddef>
#include <memory>
#include <vector>

namespace Orvik::Data
{

/// The spectrum of an area, or the area itself.
using ComplexArea = std::vector<std::complex<float>>;

/// Transforms areas of one size, both sides powers of two. On any number of threads at once.
class Fourier
{
public:
    Fourier(std::size_t width, std::size_t height);
    ~Fourier();
    Fourier(const Fourier&) = delete;
    Fourier& operator=(const Fourier&) = delete;

    [[nodiscard]] std::size_t GetWidth() const { return m_width; }
    [[nodiscard]] std::size_t GetHeight() const { return m_height; }
    [[nodiscard]] std::size_t GetSize() const { return m_width * m_height; }

    /// The spectrum of rows from the top, with columns and rows exchanged. Of `area`, which is used up, the rows from
    /// `usedRows` on are zeros.
    void Forward(ComplexArea& area, ComplexArea& spectrum, std::size_t usedRows) const;

    /// Back again, but for a factor, which is the number of pixels. Only the first `wantedRows` rows of `area` are
    /// right. `spectrum` is used up.
    void Inverse(ComplexArea& spectrum, ComplexArea& area, std::size_t wantedRows) const;

private:
    struct Plans;

    std::size_t m_width;
    std::size_t m_height;
    std::unique_ptr<const Plans> m_plans;
};

} // namespace Orvik::Data
