#pragma once

#include <utility>

namespace browsersweep {

/** An open file descriptor, closed when it goes away. */
class FileDescriptor {
public:
    FileDescriptor() noexcept = default;
    explicit FileDescriptor(int number) noexcept : number_(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, none)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor();

    /** Whether a file is open. */
    explicit operator bool() const noexcept { return number_ >= 0; }
    int number() const noexcept { return number_; }

    /** Leaves it open for another owner. */
    int release() noexcept { return std::exchange(number_, none); }

    /** Closes it early. */
    void close() noexcept;

private:
    static constexpr int none = -1;

    int number_ = none;
};

}  // namespace browsersweep
