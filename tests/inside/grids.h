#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "process/grid.h"

namespace rastrel {

using Random = std::mt19937_64;

/// From 0 to below 1.
inline double Fraction(Random& random) {
    return static_cast<double>(random() >> 11) * 0x1p-53;
}

/// A grid with a name for messages. Its samples begin at an odd place of the memory.
template <class Sample>
struct TestGrid {
    std::string name;
    int rows = 0;
    int columns = 0;
    std::vector<Sample> memory;

    TestGrid(std::string name_in, int rows_in, int columns_in)
        : name(std::move(name_in)),
          rows(rows_in),
          columns(columns_in),
          memory(1 + static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns)) {}
    [[nodiscard]] Grid<Sample> View() const { return {memory.data() + 1, rows, columns}; }
    Sample& At(int row, int column) {
        return memory[1 + static_cast<std::size_t>(row * columns + column)];
    }
};

/// Rounded into the type's range.
template <class Sample>
Sample Limited(double value) {
    if constexpr (std::is_same_v<Sample, float>) {
        return static_cast<float>(value);
    } else {
        const double low = std::numeric_limits<Sample>::min();
        const double high = std::numeric_limits<Sample>::max();
        return static_cast<Sample>(std::fmin(std::fmax(std::nearbyint(value), low), high));
    }
}

/// Hills of several sizes with a level sea; heights of about 0 to 2 * height.
template <class Sample>
TestGrid<Sample> Hills(int rows, int columns, double height, unsigned seed) {
    TestGrid<Sample> grid("hills " + std::to_string(height), rows, columns);
    Random random(seed);
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            const double noise = 0.02 * Fraction(random);
            const double ground = 0.6 * std::sin(row * 0.11) * std::cos(column * 0.07) +
                                  0.3 * std::sin(row * 0.43 + column * 0.31) + 0.1 + noise;
            grid.At(row, column) = Limited<Sample>(std::fmax(ground, -0.2) * height + height);
        }
    }
    return grid;
}

/// Any bits of the type: for floats, infinities and what is no number as well.
template <class Sample>
TestGrid<Sample> AnyBits(int rows, int columns, unsigned seed) {
    TestGrid<Sample> grid("any bits", rows, columns);
    Random random(seed);
    for (Sample& sample : grid.memory) {
        const auto bits = static_cast<std::uint32_t>(random() >> 32);
        std::memcpy(&sample, &bits, sizeof sample);
    }
    return grid;
}

/// A few small steps, so that gradients meet the formulas' exact limits; now and then an odd
/// sample.
template <class Sample>
TestGrid<Sample> Steps(int rows, int columns, const std::vector<Sample>& odd, unsigned seed) {
    TestGrid<Sample> grid("steps", rows, columns);
    Random random(seed);
    for (Sample& sample : grid.memory) {
        const auto bits = static_cast<std::uint32_t>(random() >> 32);
        sample = static_cast<Sample>(100 + (bits >> 8) % 5);
        if (bits % 40 == 0) sample = odd[(bits >> 16) % odd.size()];
    }
    return grid;
}

template <class Sample>
std::vector<Sample> OddSamples() {
    using Limits = std::numeric_limits<Sample>;
    std::vector<Sample> odd = {Limits::lowest(), Limits::max(), 0, 1};
    if constexpr (std::is_same_v<Sample, float>)
        odd.insert(odd.end(), {Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN(),
                               Limits::denorm_min(), -9999, 1e-20f, 1e20f, -0.0f});
    return odd;
}

/// Grids of one size that between them meet every way that a kernel can go.
template <class Sample>
std::vector<TestGrid<Sample>> GridsOf(int rows, int columns, unsigned seed) {
    std::vector<TestGrid<Sample>> grids;
    for (const double height : {3.0, 100.0, 9000.0, 4e6, 1e9})
        grids.push_back(Hills<Sample>(rows, columns, height, seed));
    grids.push_back(AnyBits<Sample>(rows, columns, seed));
    grids.push_back(Steps<Sample>(rows, columns, OddSamples<Sample>(), seed));
    if (std::is_same_v<Sample, float>) {
        grids.push_back(Hills<Sample>(rows, columns, 0.01, seed));
        grids.push_back(Hills<Sample>(rows, columns, 1e-42, seed));
    }
    return grids;
}

}  // namespace rastrel
