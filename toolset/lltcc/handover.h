// What the driver role hands to the assembler role of the same compile, through the environment and
// files without names that both see as /proc/PID/fd/N.
#pragma once

#include "contract/record.h"
#include "toolset/common/process.h"

#include <string>

/// The driver's side, for one compile. Also tells a compiler cache, in front of the compiler or
/// under its name, what a hit must agree on beside the command.
class Handover
{
public:
    /// `begun` is what is known of the source already, `excluded` what is not to be counted
    /// (regular expressions). Throws `std::runtime_error`.
    Handover(const Record& begun, const std::string& excluded);
    ~Handover();
    Handover(const Handover&) = delete;
    Handover& operator=(const Handover&) = delete;

    /// Changes to the compile's environment.
    const Words& environment() const { return environment_; }

    /// Why the assembler role could not count; empty when it could.
    std::string trouble() const { return content_of(trouble_); }

private:
    Words environment_;
    int notes_;
    int trouble_;
    int key_;
};

/// The assembler's side.
struct HandedOver {
    Record begun;
    std::string notes;   ///< path of the file with the compiler's notes
    std::string trouble; ///< path of the file that takes the reason of a failure
};

/// True when a compile has called this process: it was handed something.
bool is_within_compile();

/// What this process was handed, within a compile; once, as programs that it starts are not handed
/// it.
HandedOver handed_over();
