// Data alone, which needs no compiler: a third of what a link with a compiled stub takes.
#include "toolset/linkdriver/module_table.h"

#include "commonfunc/Caddis_func.h"
#include "contract/names.h"
#include "lltld/c_literal.h"
#include "lltld/counter_mode.h"
#include "lltld/db_number.h"
#include "toolset/counters/counter_text.h"

#include <algorithm>
#include <cstdint>

namespace
{

/// A text for the assembler that grows at its end. Strings are collected and stand after all else.
class TableText
{
public:
    void line(const std::string& text) { data_ += text + "\n"; }

    void address(const std::string& symbol) { line("\t.dc.a\t" + symbol); }

    /// The text as it stands in a C string literal, which the assembler reads in the same way.
    void address_of_text(const std::string& text)
    {
        const std::string label = ".Ltext" + std::to_string(number_of_texts_++);
        strings_ += label + ":\n\t.asciz\t\"" + text + "\"\n";
        address(label);
    }

    void number(std::int64_t value)
    {
        line("\t.dc.l\t" + std::to_string(static_cast<std::uint32_t>(value)));
    }

    std::string text() const { return data_ + strings_; }

private:
    std::string data_;
    std::string strings_;
    int number_of_texts_ = 0;
};

void write_arrays(TableText& out, const _SOURCEFILE_TAB& sources)
{
    const bool defines = counter_mode(g_lxprj->stubmode).owner == ARRAYS_OF_STUB;
    out.line("\t.section\t.bss");
    for (int i = 0; i < sources.elementcount; ++i) {
        const _SOURCEFILE_OBJECT& source = sources.objlist[i];
        const std::string array = ARRAY_PREFIX + stem_of(source_name(source));
        const auto points = static_cast<std::uint32_t>(std::max(source.instnum, 1));
        out.line("\t.weak\t" + array);
        if (defines) {
            out.line("\t.balign\t" + std::to_string(ARRAY_ALIGNMENT) + "\n" + array +
                     ":\n\t.skip\t" + std::to_string(size_of_array(g_lxprj->stubmode, points)));
        }
    }
}

void write_sources(TableText& out, const _SOURCEFILE_TAB& sources)
{
    const CounterMode mode = counter_mode(g_lxprj->stubmode);
    out.line(".Lsources:");
    for (int i = 0; i < sources.elementcount; ++i) {
        const _SOURCEFILE_OBJECT& source = sources.objlist[i];
        const std::string name = source_name(source);
        out.address_of_text(escape_for_c(name));
        out.address(ARRAY_PREFIX + stem_of(name));
        out.number(registered_size(mode, source.instnum));
        out.number(source.instnum);
    }
}

void write_module(TableText& out, int number_of_sources, const char* build_id)
{
    const LinuxPrjItem& prj = *g_lxprj;
    // The second name says that this has a stub: no archive step takes it for a member.
    const std::string loader = "\"" TEST_LOADER_PREFIX + escape_for_c(prj.modName) + "\"";
    out.line("\t.globl\t" + loader + "\n\t.globl\tlltcov_module\n\t.hidden\tlltcov_module\n" +
             loader + ":\nlltcov_module:");
    out.address("lltcov_start");
    out.address_of_text(escape_for_c(prj.modName));
    out.address_of_text(escape_for_c(prj.szCovDictPath));
    if (prj.lltcovRootpath.empty()) {
        out.address("0");
    } else {
        out.address_of_text(escape_for_c(prj.lltcovRootpath));
    }
    out.address_of_text(escape_for_c("{\"projectname\":\"") + escape_for_json_in_c(prj.szPrjName) +
                        escape_for_c("\",\"buid\":\"") + escape_for_json_in_c(build_id) +
                        escape_for_c("\"}"));
    out.address(".Lsources");
    for (const int value : {number_of_sources, prj.stubmode, prj.TimerPolicy == 1 ? 1 : 0,
                            prj.TimeInterval, prj.SignalPolicy == 1 ? 1 : 0, prj.SignalNUM,
                            g_lxprj->isDisableUserConfig() == 0 ? 1 : 0, 0}) {
        out.number(value);
    }
}

} // namespace

std::string module_table(const _SOURCEFILE_TAB& sources, const char* build_id)
{
    TableText out;
    out.line("\t.section\t.note.GNU-stack,\"\",%progbits");
    write_arrays(out, sources);
    out.line("\t.section\t.data.rel.ro,\"aw\"\n\t.balign\t8");
    write_module(out, sources.elementcount, build_id);
    write_sources(out, sources);
    return out.text();
}
