// A disk that is full, for as long as the object lives: no file grows beyond a few bytes.
#pragma once

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>

class DiscoCheio {
  public:
    explicit DiscoCheio(rlim_t bytes) : sinal_(signal(SIGXFSZ, SIG_IGN)) {
        EXPECT_EQ(getrlimit(RLIMIT_FSIZE, &antes_), 0);
        rlimit menor = antes_;
        menor.rlim_cur = bytes;
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &menor), 0);
    }
    DiscoCheio(const DiscoCheio&) = delete;
    DiscoCheio& operator=(const DiscoCheio&) = delete;
    ~DiscoCheio() {
        setrlimit(RLIMIT_FSIZE, &antes_);
        signal(SIGXFSZ, sinal_);
    }

  private:
    rlimit antes_;
    void (*sinal_)(int);
};
