#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

#include "inside/targets.h"

namespace rastrel {

/// An output with room on both sides that nothing may write to.
template <class Sample>
class Framed {
  public:
    explicit Framed(std::size_t count) : all_(count + 2 * kMargin, Sentinel()) {}

    [[nodiscard]] Sample* Data() { return all_.data() + kMargin; }
    [[nodiscard]] const std::vector<Sample>& All() const { return all_; }
    [[nodiscard]] std::ptrdiff_t PlaceOf(std::size_t index) const {
        return static_cast<std::ptrdiff_t>(index) - static_cast<std::ptrdiff_t>(kMargin);
    }

  private:
    static constexpr std::size_t kMargin = 70;
    static Sample Sentinel() {
        Sample sample;
        std::memset(&sample, 0x5a, sizeof sample);
        return sample;
    }
    std::vector<Sample> all_;
};

/// Runs a kernel with every set of instructions that the machine has and expects the same bits as
/// the plain form wrote.
template <class Sample, class Run>
void ExpectOnEveryTarget(const Framed<Sample>& expected, std::size_t count, const std::string& what,
                         Run run) {
    for (const std::int64_t target : Targets()) {
        const ChosenTarget chosen(target);
        Framed<Sample> out(count);
        run(out.Data());
        for (std::size_t i = 0; i < out.All().size(); ++i) {
            ASSERT_EQ(std::memcmp(&out.All()[i], &expected.All()[i], sizeof(Sample)), 0)
                << what << ", target " << target << ": " << +out.All()[i] << " in place of "
                << +expected.All()[i] << " at " << out.PlaceOf(i);
        }
    }
}

}  // namespace rastrel
