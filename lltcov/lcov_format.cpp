// Function names stay as the assembler has them: they are unique, hold no comma, which would end
// the name there, and "genhtml --demangle-cpp" makes them readable.
#include "lltcov/report_formats.h"

namespace
{

std::string rate_lines(const char* found, const char* hit, const Rate& rate)
{
    return std::string(found) + std::to_string(rate.total) + "\n" + hit + std::to_string(rate.hit) +
           "\n";
}

} // namespace

std::string as_lcov(const Report& report)
{
    std::string out;
    for (const auto& [path, source] : report.coverage) {
        out += "TN:\nSF:" + path + "\n";
        for (const auto& [name, function] : source.functions) {
            out += "FN:" + std::to_string(function.line) + "," + name + "\n";
        }
        for (const auto& [name, function] : source.functions) {
            out += "FNDA:" + std::to_string(function.count) + "," + name + "\n";
        }
        const Rates rates = rates_of(source);
        out += rate_lines("FNF:", "FNH:", rates.functions);
        for (const auto& [line, count] : source.lines) {
            out += "DA:" + std::to_string(line) + "," + std::to_string(count) + "\n";
        }
        out += rate_lines("LF:", "LH:", rates.lines) + "end_of_record\n";
    }
    return out;
}
