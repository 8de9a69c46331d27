#pragma once

#include <hwy/targets.h>

#include <cstdint>
#include <vector>

namespace rastrel {

/// Makes the library use one set of instructions until it ends.
class ChosenTarget {
  public:
    explicit ChosenTarget(std::int64_t target) { hwy::GetChosenTarget().Update(target); }
    ChosenTarget(const ChosenTarget&) = delete;
    ChosenTarget& operator=(const ChosenTarget&) = delete;
    ~ChosenTarget() { hwy::GetChosenTarget().Update(hwy::SupportedTargets()); }
};

/// All sets of instructions that the machine has.
inline std::vector<std::int64_t> Targets() {
    std::vector<std::int64_t> targets = {0};  // the form without any special instructions
    const std::int64_t supported = hwy::SupportedTargets();
    for (std::int64_t bit = 1; bit > 0 && bit <= supported; bit <<= 1) {
        if ((supported & bit) != 0) targets.push_back(bit);
    }
    return targets;
}

}  // namespace rastrel
