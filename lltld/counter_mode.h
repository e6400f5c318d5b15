// What the archive step makes of the rules of the stub modes.
#pragma once

#include "contract/stub_modes.h" // IWYU pragma: export

#include <cstdint>
#include <string>

/// Elements of the declared counter array of a source with `instnum` points.
std::int64_t array_length(const CounterMode& mode, std::int32_t instnum);

/// By how much the running start index advances after a source with `instnum` points.
std::uint64_t start_advance(const CounterMode& mode, std::int32_t instnum);

/// Bytes of the counter buffer stated at registration.
int registered_size(const CounterMode& mode, std::int32_t instnum);

/// The declaration line of the counter array of stem `name`; empty when the stub declares none. The
/// elements are of `char`, or of `unsigned int`, which a custom type makes `unsigned long`.
std::string array_line(const CounterMode& mode, const char* name, std::int64_t length,
                       bool custom_type);
