#include "Data/Search/Fourier.h"

#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <random>

namespace Orvik::Data
{
namespace
{

using Complex = std::complex<float>;

ComplexArea MakeNoise(std::size_t size)
{
    std::mt19937 random(3);
    ComplexArea area(size);
    for (Complex& value : area)
        value = Complex(static_cast<float>(random() % 100), static_cast<float>(random() % 100));
    return area;
}

TEST(Fourier, TheSpectrumIsThatOfTheDefinition)
{
    constexpr std::size_t width = 16;
    constexpr std::size_t height = 8;
    const ComplexArea area = MakeNoise(width * height);
    ComplexArea used = area;
    ComplexArea spectrum;
    Fourier(width, height).Forward(used, spectrum, height);
    for (std::size_t v = 0; v < height; ++v)
        for (std::size_t u = 0; u < width; ++u)
        {
            std::complex<double> sum;
            for (std::size_t y = 0; y < height; ++y)
                for (std::size_t x = 0; x < width; ++x)
                {
                    const double turn = static_cast<double>(u * x) / width + static_cast<double>(v * y) / height;
                    sum += std::complex<double>(area[y * width + x]) * std::polar(1.0, -2 * std::numbers::pi * turn);
                }
            EXPECT_NEAR(spectrum[u * height + v].real(), sum.real(), 0.05);
            EXPECT_NEAR(spectrum[u * height + v].imag(), sum.imag(), 0.05);
        }
}

TEST(Fourier, ItComesBack)
{
    for (const auto& [width, height] : {std::pair(64, 16), std::pair(1, 8), std::pair(8, 1), std::pair(1, 1)})
    {
        const auto size = static_cast<std::size_t>(width * height);
        const ComplexArea area = MakeNoise(size);
        ComplexArea used = area;
        ComplexArea spectrum;
        ComplexArea back;
        const Fourier fourier(static_cast<std::size_t>(width), static_cast<std::size_t>(height));
        fourier.Forward(used, spectrum, static_cast<std::size_t>(height));
        fourier.Inverse(spectrum, back, static_cast<std::size_t>(height));
        for (std::size_t i = 0; i < size; ++i)
            EXPECT_LT(std::abs(back[i] / static_cast<float>(size) - area[i]), 0.001F);
    }
}

} // namespace
} // namespace Orvik::Data
