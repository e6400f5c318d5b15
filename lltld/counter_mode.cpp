// One row per stub mode. Kept: 4 packs its array but does not round its start index, and 4 and 7
// register four bytes per point although their arrays are packed.
#include "lltld/counter_mode.h"

#include "contract/names.h"

namespace
{

constexpr CounterMode MODES[] = {
    //  array                     packs  rounds bytes recorded
    {ArrayForm::word_definition, true, true, 0, 0},   // 0: a bit per point
    {ArrayForm::word_definition, false, false, 4, 1}, // 1: a counter per point
    {ArrayForm::char_definition, false, false, 1, 2}, // 2: a byte per point
    {ArrayForm::none, false, false, 4, 3},            // 3
    {ArrayForm::word_definition, true, false, 4, 4},  // 4
    {ArrayForm::word_extern, false, false, 4, 5},     // 5
    {ArrayForm::char_definition, false, false, 4, 6}, // 6
    {ArrayForm::word_extern, true, true, 4, 0},       // 7: 0, defined elsewhere
    {ArrayForm::word_extern, false, false, 4, 1},     // 8: 1, defined elsewhere
    {ArrayForm::char_extern, false, false, 4, 2},     // 9: 2, defined elsewhere
};

} // namespace

CounterMode counter_mode(int stubmode)
{
    const auto count = static_cast<int>(sizeof MODES / sizeof *MODES);
    if (stubmode < 0 || stubmode >= count) {
        return {ArrayForm::none, false, false, 4, stubmode};
    }
    return MODES[stubmode];
}

std::int64_t array_length(const CounterMode& mode, std::int32_t instnum)
{
    const std::int64_t points = instnum != 0 ? instnum : 1;
    return mode.packs_array ? ((points - 1) >> 5) + 1 : points;
}

std::uint64_t start_advance(const CounterMode& mode, std::int32_t instnum)
{
    const std::int64_t points = instnum;
    if (!mode.rounds_start) {
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
    const std::string array = std::string(" " ARRAY_PREFIX) + name;
    const std::string bound = std::to_string(static_cast<std::int32_t>(length));
    switch (mode.array) {
    case ArrayForm::char_definition:
        return "char" + array + "[" + bound + "] = {0};\n";
    case ArrayForm::char_extern:
        return "extern char" + array + "[];\n";
    case ArrayForm::word_definition:
        // Kept: the number is followed by the letter l there, a valid bound in C.
        return custom_type ? "unsigned long" + array + "[" +
                                 std::to_string(static_cast<std::uint32_t>(length)) + "l] = {0};\n"
                           : "unsigned int" + array + "[" + bound + "] = {0};\n";
    case ArrayForm::word_extern:
        return (custom_type ? "extern unsigned long" : "extern unsigned int") + array + "[];\n";
    case ArrayForm::none:
        break;
    }
    return "";
}
