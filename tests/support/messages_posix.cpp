#include <gtest/gtest.h>

#include "support/messages.h"

namespace rastrel_test {

std::string MessageOf(const std::function<void()>& action) {
    testing::internal::CaptureStderr();
    action();
    std::string text = testing::internal::GetCapturedStderr();
    if (text.ends_with('\n')) text.pop_back();
    return text;
}

}  // namespace rastrel_test
