#pragma once

// Processes that may not do everything: only on systems of the Unix kind.

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>

namespace rastrel_test {

/// While it lives, no file of the process can grow beyond a length: writes fail as on a full disk.
class FullDisk {
  public:
    explicit FullDisk(rlim_t length) : old_signal_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &old_limit_);
        rlimit limit = old_limit_;
        limit.rlim_cur = length;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &old_limit_);
        std::signal(SIGXFSZ, old_signal_);
    }

  private:
    rlimit old_limit_ = {};
    void (*old_signal_)(int);
};

/// While it lives, the process has no more rights than any user, even when run as root.
class OrdinaryUser {
  public:
    OrdinaryUser() : old_user_(geteuid()) {
        if (old_user_ == 0) {
            EXPECT_EQ(seteuid(kNobody), 0);
        }
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;
    ~OrdinaryUser() { EXPECT_EQ(seteuid(old_user_), 0); }

    static constexpr uid_t kNobody = 65534;

  private:
    uid_t old_user_;
};

}  // namespace rastrel_test
