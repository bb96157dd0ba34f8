#pragma once

struct os_log_s;
typedef os_log_s* os_log_t;

extern "C" os_log_s _os_log_default;
extern "C" void browsersweepEmulatedLog(os_log_t log, const char* format, ...);

#define OS_LOG_DEFAULT (&_os_log_default)
#define os_log_debug(log, ...) browsersweepEmulatedLog((log), __VA_ARGS__)
