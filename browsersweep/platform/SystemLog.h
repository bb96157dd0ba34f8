#pragma once

#include <memory>
#include <string_view>

#include "browsersweep/Export.h"

namespace browsersweep {

/** The system's log. A seam: tests read what was logged. */
class BROWSERSWEEP_EXPORT SystemLog {
public:
    SystemLog() = default;
    SystemLog(const SystemLog&) = delete;
    SystemLog& operator=(const SystemLog&) = delete;
    virtual ~SystemLog();

    /** The one of the running system. */
    static std::shared_ptr<const SystemLog> system();

    /** Logs a message at debug level. Never fails. */
    virtual void debug(std::string_view message) const noexcept = 0;
};

}  // namespace browsersweep
