// Counts are believed only when they fit the width of their counters and the number of probes.
// Runs of equal counts stay runs, so that a few bytes cannot ask for gigabytes.
#include "lltcov/dump_file.h"

#include "commonfunc/text_lines.h"

namespace
{

/// The largest count by COUNTERBYTES.
std::uint64_t largest_count(const TextLines& lines, std::string_view counter_bytes)
{
    const std::uint64_t bytes = lines.number_of(counter_bytes, "counter width", 4);
    if (bytes != 0 && bytes != 1 && bytes != 4) {
        lines.fail("counters of " + std::to_string(bytes) + " bytes are not known");
    }
    return bytes == 4 ? UINT32_MAX : bytes == 1 ? UINT8_MAX : 1;
}

void read_counts(TextLines& lines, std::uint64_t largest, DumpedSource& source)
{
    std::uint64_t probes = 0;
    for (std::string_view word = lines.word(); !word.empty(); word = lines.word()) {
        const bool is_run = word.find('*') != word.npos;
        const std::string_view count = split_off(word, '*');
        const std::uint64_t times = is_run ? lines.number_of(word, "number", MAX_PROBES) : 1;
        probes += times;
        source.runs.push_back(
            {lines.number_of(count, "count", largest), static_cast<std::uint32_t>(times)});
    }
    if (probes != source.probes || !lines.rest_of_line().empty()) {
        lines.fail("there are not " + std::to_string(source.probes) + " counts");
    }
}

/// file INDEX SYMBOL.EXTENSION PROBES COUNTERBYTES, and the counts in the next line.
DumpedSource read_source(TextLines& lines)
{
    DumpedSource source;
    lines.number("index", INT32_MAX);
    std::string_view fields = lines.rest_of_line();
    const std::size_t width_at = fields.rfind(' ');
    const std::size_t probes_at = width_at == 0 ? fields.npos : fields.rfind(' ', width_at - 1);
    if (width_at == fields.npos || probes_at == fields.npos) {
        lines.fail("a name and two numbers are missing");
    }
    const std::string_view name = fields.substr(0, probes_at);
    source.symbol = name.substr(0, name.rfind('.'));
    const std::string_view probes = fields.substr(probes_at + 1, width_at - probes_at - 1);
    source.probes =
        static_cast<std::uint32_t>(lines.number_of(probes, "number of probes", MAX_PROBES));
    const std::uint64_t largest = largest_count(lines, fields.substr(width_at + 1));
    if (!lines.next()) {
        lines.fail("the counts are missing behind this line");
    }
    read_counts(lines, largest, source);
    return source;
}

} // namespace

Dump read_dump(std::string_view text)
{
    Dump dump;
    TextLines lines(text);
    if (!lines.next() || lines.rest_of_line() != "lltcov 1") {
        throw FormatError(1, "this is no dump file of format 1");
    }
    while (lines.next()) {
        const std::string_view key = lines.word();
        if (key == "module") {
            dump.module = lines.rest_of_line();
        } else if (key == "buid") {
            dump.buid = lines.rest_of_line();
        } else if (key == "area") {
            dump.area = lines.rest_of_line();
        } else if (key == "file") {
            dump.sources.push_back(read_source(lines));
        } else if (key == "end") {
            if (lines.next()) {
                lines.fail("there is more behind the end");
            }
            if (dump.area.empty()) {
                lines.fail("the file names no work area");
            }
            return dump;
        }
    }
    lines.fail("the file is cut behind this line");
}
