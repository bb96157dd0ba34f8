#include <cstdio>

#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

/** peak PROGRAM ARGUMENT...: runs a program and tells the most memory that it had, being small
 * itself. */
int main(int argc, char** argv) {
    if (argc < 2) {
        std::fputs("usage: peak PROGRAM ARGUMENT...\n", stderr);
        return 2;
    }
    pid_t process = 0;
    if (::posix_spawn(&process, argv[1], nullptr, nullptr, argv + 1, environ) != 0) {
        std::perror(argv[1]);
        return 2;
    }
    int status = 0;
    rusage used{};
    ::wait4(process, &status, 0, &used);
    std::fprintf(stderr, "peak %ld KiB\n", used.ru_maxrss);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}
