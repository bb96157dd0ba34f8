#pragma once

namespace browsersweep::posix {

/**
 * As long as it lives, folders whose contents lie in the cloud alone are not fetched when this
 * thread opens or lists them: the system says EDEADLK. One implementation per system.
 */
class WithoutDownloads {
public:
    WithoutDownloads() noexcept;
    WithoutDownloads(const WithoutDownloads&) = delete;
    WithoutDownloads& operator=(const WithoutDownloads&) = delete;
    // Linux has nothing to give back, which is its implementation's to know.
    ~WithoutDownloads();  // NOLINT(performance-trivially-destructible)

private:
    [[maybe_unused]] int before_ = 0;
};

}  // namespace browsersweep::posix
