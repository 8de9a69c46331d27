#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

namespace rastrel {

/// The band writers that hosts hold, behind numbers above 0 that say nothing of where they are: one
/// that is wrong or was closed finds nothing. A call keeps the writer it fetched until it returns.
template <class Writer>
class WriterTable {
  public:
    /// 0 for no writer.
    [[nodiscard]] std::intptr_t Add(std::unique_ptr<Writer> writer) {
        if (!writer) return 0;
        const std::lock_guard lock(lock_);
        writers_.emplace(++last_, std::move(writer));
        return last_;
    }
    [[nodiscard]] std::shared_ptr<Writer> Fetch(std::intptr_t number) {
        const std::lock_guard lock(lock_);
        const auto found = writers_.find(number);
        return found != writers_.end() ? found->second : nullptr;
    }
    /// The writer leaves the table.
    [[nodiscard]] std::shared_ptr<Writer> Remove(std::intptr_t number) {
        const std::lock_guard lock(lock_);
        const auto node = writers_.extract(number);
        return node.empty() ? nullptr : node.mapped();
    }

  private:
    std::mutex lock_;
    std::map<std::intptr_t, std::shared_ptr<Writer>> writers_;
    std::intptr_t last_ = 0;
};

}  // namespace rastrel
