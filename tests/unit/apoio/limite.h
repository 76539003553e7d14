// A limit of the process for as long as the object lives: a disk that is full (RLIMIT_FSIZE, bytes
// a file), no more descriptors (RLIMIT_NOFILE).
#pragma once

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>

class Limite {
  public:
    Limite(decltype(RLIMIT_FSIZE) de_que, rlim_t quanto)
        : de_que_(de_que), sinal_(signal(SIGXFSZ, SIG_IGN)) {
        EXPECT_EQ(getrlimit(de_que, &antes_), 0);
        const rlimit menor{quanto, antes_.rlim_max};
        EXPECT_EQ(setrlimit(de_que, &menor), 0);
    }
    Limite(const Limite&) = delete;
    Limite& operator=(const Limite&) = delete;
    ~Limite() {
        setrlimit(de_que_, &antes_);
        signal(SIGXFSZ, sinal_);
    }

  private:
    decltype(RLIMIT_FSIZE) de_que_;
    rlimit antes_;
    void (*sinal_)(int);
};
