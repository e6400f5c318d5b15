// Pure: numbers and a line of C out of the rules and a number of points.
#include "lltld/counter_mode.h"

#include "contract/names.h"

std::int64_t array_length(const CounterMode& mode, std::int32_t instnum)
{
    const std::int64_t points = instnum != 0 ? instnum : 1;
    return mode.point == POINT_IS_BIT ? ((points - 1) >> 5) + 1 : points;
}

std::uint64_t start_advance(const CounterMode& mode, std::int32_t instnum)
{
    const std::int64_t points = instnum;
    if (mode.rounds_start == 0) {
        return static_cast<std::uint64_t>(points);
    }
    return points > 0 ? static_cast<std::uint64_t>((points - 1) / 32 * 32 + 32) : 0;
}

int registered_size(const CounterMode& mode, std::int32_t instnum)
{
    if (mode.bytes_per_point != 0) {
        // Wraps like the 32-bit product that the runtime's own tools form.
        return static_cast<int>(static_cast<std::uint32_t>(instnum) *
                                static_cast<std::uint32_t>(mode.bytes_per_point));
    }
    return instnum > 0 ? ((instnum - 1) / 32 + 1) * 4 : 0;
}

std::string array_line(const CounterMode& mode, const char* name, std::int64_t length,
                       bool custom_type)
{
    const bool is_byte = mode.point == POINT_IS_BYTE;
    const std::string array = (is_byte       ? "char"
                               : custom_type ? "unsigned long"
                                             : "unsigned int") +
                              (std::string(" " ARRAY_PREFIX) + name);
    switch (mode.owner) {
    case ARRAYS_OF_OBJECTS:
        return "extern " + array + "[];\n";
    case ARRAYS_OF_STUB:
        // Kept: the number of longs is followed by the letter l there, a valid bound in C.
        return array + "[" +
               (custom_type && !is_byte ? std::to_string(static_cast<std::uint32_t>(length)) + "l"
                                        : std::to_string(static_cast<std::int32_t>(length))) +
               "] = {0};\n";
    case ARRAYS_OF_NOBODY:
        break;
    }
    return "";
}
