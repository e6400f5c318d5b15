// What the driver role hands to the assembler role of the same compile, through the environment and
// files without names that both see as /proc/PID/fd/N.
#pragma once

#include "contract/record.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

/// The driver's side, for one compile: sets the environment and takes it back. Also tells a
/// compiler cache, in front of the compiler or under its name, what a hit must agree on beside the
/// command.
class Handover
{
public:
    /// `begun` is what is known of the source already; `headers` are the compiler's own (regular
    /// expressions), `assembler` its assembler.
    Handover(const Record& begun, const std::string& headers, const std::string& assembler);
    ~Handover();
    Handover(const Handover&) = delete;
    Handover& operator=(const Handover&) = delete;

    /// Why the assembler role could not count; empty when it could.
    std::string trouble() const;

private:
    void set(const char* name, const std::string& value);

    std::vector<std::pair<const char*, std::optional<std::string>>> before_; ///< of the environment
    int notes_;
    int trouble_;
    int key_;
};

/// The assembler's side.
struct HandedOver {
    Record begun;
    std::string notes;     ///< path of the file with the compiler's notes
    std::string trouble;   ///< path of the file that takes the reason of a failure
    std::string assembler; ///< that the compiler would run
};

/// True when a compile has called this process: it was handed something.
bool is_within_compile();

/// What this process was handed; throws `std::runtime_error` when it was called by something else.
HandedOver handed_over();
