// Runs one program and prints what it cost, as a line of JSON: seconds of CPU in user and system
// mode, seconds on the clock, peak resident memory in KiB, and the exit status.
//
//     mede SAIDA PROGRAMA [ARGUMENTO...]
//
// The program's output goes to the file SAIDA. A program of its own, and a small one: what a child
// is charged with begins with the memory of the process that forked it.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <ctime>

namespace {

double segundos(const timeval& t) {
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) / 1e6;
}

double relogio() {
    timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) / 1e9;
}

[[noreturn]] void executa(const char* saida, char** comando) {
    const int fd = open(saida, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (fd >= 0 && dup2(fd, STDOUT_FILENO) >= 0) execvp(comando[0], comando);
    std::perror(fd < 0 ? saida : comando[0]);
    _exit(127);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fputs("mede SAIDA PROGRAMA [ARGUMENTO...]\n", stderr);
        return 2;
    }
    const double inicio = relogio();
    const pid_t filho = fork();
    if (filho == 0) executa(argv[1], argv + 2);
    int estado = 0;
    rusage uso = {};
    if (filho < 0 || wait4(filho, &estado, 0, &uso) != filho) {
        std::perror("mede");
        return 1;
    }
    const int codigo = WIFEXITED(estado) ? WEXITSTATUS(estado) : 128 + WTERMSIG(estado);
    std::printf(R"({"user":%.6f,"sys":%.6f,"wall":%.6f,"maxrss":%ld,"status":%d})"
                "\n",
                segundos(uso.ru_utime), segundos(uso.ru_stime), relogio() - inicio, uso.ru_maxrss,
                codigo);
}
