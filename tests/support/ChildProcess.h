#pragma once

#include <functional>

#include <sys/types.h>

namespace browsersweep::tests {

/**
 * A second process, such as a browser that holds a database. It does its work, says that it is
 * ready, and then stands still until it is killed, as hard as a crash, when this goes away.
 */
class ChildProcess {
public:
    /** Tells the test that it may go on. */
    using Ready = std::function<void()>;

    /** Returns once the work has called its argument. What the work throws ends the child. */
    explicit ChildProcess(const std::function<void(const Ready&)>& body);
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    ~ChildProcess();

private:
    pid_t process_ = -1;
};

/**
 * Runs a piece of a test in a process of its own. Returns what the piece returns, or 1 where that
 * is 0 and something failed in it; what failed is printed by it. An exception is a 2.
 */
int runInProcess(const std::function<int()>& body);

/**
 * Runs a piece of a test in a process of a user without rights, who is another than the present one
 * only where that is root. Returns 0 if nothing failed in it; what failed is printed by it.
 */
int runAsOrdinaryUser(const std::function<void()>& body);

}  // namespace browsersweep::tests
