// What the program says: tagged log lines and coloured lines on standard output, and its own
// one-line diagnostics on standard error.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// Component number of this program in a `TUSKLog` tag.
constexpr unsigned char LOG_COMPONENT = 11;
/// Module number of the build wrapper and its libraries in a `TUSKLog` tag.
constexpr unsigned char LOG_MODULE = 7;
/// Levels of a `TUSKLog` tag.
constexpr unsigned char LOG_WARNING = 3;
constexpr unsigned char LOG_ERROR = 4;

/// Prints the formatted text on standard output, without a line end of its own.
void say(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// Prints the tag "[TUSK-0x%02X%02X%X%03X]: " (component, module, the low 4 bits of `level`, the
/// low 12 bits of `code`) and the formatted message on standard output, then flushes both output
/// streams. The format brings its own line end.
void TUSKLog(unsigned char component, unsigned char module, unsigned char level, unsigned int code,
             const char* format, ...) __attribute__((format(printf, 5, 6)));

/// Prints the formatted text between "\033[0;32;34mTUSK_INFO:" and "\033[m" (blue) on standard
/// output, without a line end of its own and without a flush.
void print_info(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// The same between "\033[0;32;31mTUSK_FATAL:" and "\033[m" (red), then flushes both streams.
void print_fatal(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// The name that `warn` begins its lines with; "lltwrapper" until it is set. The text is not
/// copied.
void set_warning_name(const char* program);

/// Prints the program's name, ": ", the formatted text and a line end on standard error, as one
/// write. For what the build engineer should know: what, where, what to do.
void warn(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// How many such lines this process has printed. Work that leaves the number as it was went well.
std::size_t warnings_printed();

/// While it lives, it keeps what the functions above would print: to learn what an operation says
/// without printing it. One at a time.
class HeldMessages
{
public:
    HeldMessages();
    ~HeldMessages();
    HeldMessages(const HeldMessages&) = delete;
    HeldMessages& operator=(const HeldMessages&) = delete;

    std::string output;                ///< for standard output
    std::vector<std::string> warnings; ///< of `warn`, without the program's name and the line end
};

/// From now on standard output goes to the end of the file that "LLTWRAPPER_LOG" names, when that
/// variable is filled: builds that read what their tools print shall not read the program's lines.
/// A warning tells when the file cannot be opened.
void log_output();

/// Descriptor of the standard output that the program was started with, where tools print to.
int tool_output();

/// Makes that the standard output of the program again.
void restore_output();

/// For `std::set_terminate`: ends the process with a line and status 1 where there is not even the
/// memory to throw an exception. No crash, and no core file.
[[noreturn]] void stop_without_memory();

/// Flushes standard output and standard error; a write error is ignored, since messages never
/// stop a build.
void flush_output();
