#include "Photograph.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <vector>

namespace
{

constexpr int kOctaves = 7;
constexpr double kCameraNoise = 1.5; // standard deviation, in channel values

/// Noise whose amplitude grows with its wavelength, as in nature.
class Clouds
{
public:
    explicit Clouds(std::mt19937 &random)
    {
        for (float &value : m_lattice)
            value = std::uniform_real_distribution<float>(-1, 1)(random);
    }

    double at(double x, double y) const
    {
        double sum = 0;
        double strength = 1;
        for (int octave = 0; octave < kOctaves; ++octave, x = 2 * x + 17.3, y = 2 * y + 5.7, strength *= 0.55)
            sum += strength * wave(x, y);
        return sum;
    }

private:
    static constexpr int kPeriod = 64;

    static double eased(double part) { return part * part * (3 - 2 * part); }

    double wave(double x, double y) const
    {
        const int column = int(std::floor(x));
        const int row = int(std::floor(y));
        const auto corner = [&](int dx, int dy) {
            return double(m_lattice[std::size_t((row + dy) % kPeriod * kPeriod + (column + dx) % kPeriod)]);
        };
        const double right = eased(x - column);
        const double down = eased(y - row);
        const double top = corner(0, 0) + (corner(1, 0) - corner(0, 0)) * right;
        const double bottom = corner(0, 1) + (corner(1, 1) - corner(0, 1)) * right;
        return top + (bottom - top) * down;
    }

    std::array<float, std::size_t(kPeriod) * kPeriod> m_lattice;
};

} // namespace

QImage photograph(const QSize &size, uint seed)
{
    std::mt19937 random(seed);
    const Clouds light(random);
    const Clouds warmth(random);
    std::normal_distribution<double> grain(0, kCameraNoise);
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < size.width(); ++x) {
            const double brightness = 130 + 75 * light.at(x / 90.0, y / 70.0);
            const double tint = 45 * warmth.at(x / 150.0, y / 130.0);
            const auto channel = [&](double value) {
                return std::clamp(int(std::lround(value + grain(random))), 0, 255);
            };
            line[x] = qRgb(channel(brightness + tint), channel(brightness + 8), channel(brightness - tint));
        }
    }
    return image;
}
