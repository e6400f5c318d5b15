// Assembly texts as gcc writes them for several machines, cut to what matters: where each counter
// goes, what is left of the text, and what the record says of it.
#include "tests/refusal.h"
#include "toolset/common/records.h"
#include "toolset/counters/counter_text.h"

#include <gtest/gtest.h>

namespace
{

/// A table of the file with 64-bit pointers, its functions and their counters of kind 0.
std::string tables(const std::string& functions, const std::string& list,
                   const std::string& joins = "\t.quad\t__gcov_merge_add\n\t.quad\t0\n")
{
    return "\t.section\t.data.rel.local,\"aw\"\n\t.type\t.LPBX1, @object\n.LPBX1:\n" + list +
           functions +
           "\t.section\t.data.rel,\"aw\"\n\t.size\t.LPBX0, 112\n.LPBX0:\n"
           "\t.long\t1110585898\n\t.zero\t4\n\t.quad\t0\n\t.long\t123\n\t.long\t-5\n"
           "\t.quad\t.LC0\n" +
           joins +
           "\t.long\t1\n\t.zero\t4\n\t.quad\t.LPBX1\n"
           "\t.section\t.gcov_info,\"aw\"\n.LPBX2:\n\t.quad\t.LPBX0\n";
}

std::string function_table(const std::string& name, const std::string& counters)
{
    return "\t.type\t__gcov_." + name + ", @object\n__gcov_." + name +
           ":\n\t.quad\t.LPBX0\n\t.long\t11\n\t.long\t-1\n\t.long\t33\n\t.zero\t4\n" + counters;
}

const std::string ONE_LIST = "\t.quad\t__gcov_.f\n";
const std::string ONE_TABLE = function_table("f", "\t.long\t2\n\t.zero\t4\n\t.quad\t__gcov0.f\n");
const std::string ONE_COMMON = "\t.local\t__gcov0.f\n\t.comm\t__gcov0.f,16,16\n";

} // namespace

TEST(GccText, ReferencesBecomePlacesInTheArrayWhateverTheMachineWrites)
{
    const struct {
        const char* machine;
        const char* line;
        const char* renamed;
    } rows[] = {
        {"x86-64", "\taddq\t$1, 8+__gcov0.f(%rip)\n", "\taddq\t$1, 8+A+0(%rip)\n"},
        {"x86 absolute", "\tmovl\t$__gcov0.f, %eax\n", "\tmovl\t$A+0, %eax\n"},
        {"x86 in a shared library", "\tleal\t__gcov0.f@GOTOFF(%ebx), %eax\n",
         "\tleal\tA+0@GOTOFF(%ebx), %eax\n"},
        {"Intel syntax", "\tadd\tQWORD PTR __gcov0.f[rip+8], 1\n",
         "\tadd\tQWORD PTR A+0[rip+8], 1\n"},
        {"AArch64", "\tldr\tx0, [x6, #:lo12:__gcov0.f]\n", "\tldr\tx0, [x6, #:lo12:A+0]\n"},
        {"ARM", "\t.word\t__gcov0.f-(.LPIC0+4)\n", "\t.word\tA+0-(.LPIC0+4)\n"},
        {"RISC-V", "\tlui\ta5,%hi(__gcov0.f+8)\n", "\tlui\ta5,%hi(A+0+8)\n"},
        {"s390x", "\tlgrl\t%r4,__gcov0.f+8\n", "\tlgrl\t%r4,A+0+8\n"},
        {"twice in a line", "\tmov\t__gcov0.f, __gcov0.f\n", "\tmov\tA+0, A+0\n"},
        {"the runtime's functions", "\tcall\t__gcov_fork@PLT\n", "\tcall\t__gcov_fork@PLT\n"},
        {"a text", "\t.string\t\"__gcov0.f .LPBX0\"\n", "\t.string\t\"__gcov0.f .LPBX0\"\n"},
        {"names that only begin so", "\tcall\tmy__gcov0.f\n", "\tcall\tmy__gcov0.f\n"},
    };
    for (const auto& row : rows) {
        const std::string text =
            "\t.text\n" + std::string(row.line) + tables(ONE_TABLE, ONE_LIST) + ONE_COMMON;
        EXPECT_EQ(with_array(read_gcc_text(text), "A"),
                  "\t.text\n" + std::string(row.renamed) +
                      "\t.section\t.data.rel.local,\"aw\"\n\t.section\t.data.rel,\"aw\"\n"
                      "\t.section\t.gcov_info,\"aw\"\n")
            << row.machine;
    }
}

TEST(GccText, TablesTellWhatADataFileNeeds)
{
    const RecordedCounters record = read_gcc_text(tables(ONE_TABLE, ONE_LIST) + ONE_COMMON).record;
    EXPECT_EQ(record.version, 1110585898U);
    EXPECT_TRUE(record.has_checksum);
    EXPECT_EQ(record.array_bytes, 16U);
    EXPECT_EQ(record.or_bytes, 0U);
    ASSERT_EQ(record.functions.size(), 1U);
    EXPECT_EQ(record.functions[0].name, "f");
    EXPECT_EQ(record.functions[0].ident, 11U);
    EXPECT_EQ(record.functions[0].lineno_checksum, 0xFFFFFFFFU);
    EXPECT_EQ(record.functions[0].cfg_checksum, 33U);
    // 32-bit machine, a gcc without checksum: the null pointer is one more number.
    const std::string small =
        ".LPBX1:\n\t.word\t__gcov_.f\n__gcov_.f:\n\t.word\t.LPBX0\n\t.word\t1\n\t.word\t2\n"
        "\t.word\t3\n\t.word\t1\n\t.word\t__gcov0.f\n.LPBX0:\n\t.word\t7\n\t.word\t0\n\t.word\t9\n"
        "\t.word\t.LC0\n\t.word\t__gcov_merge_add\n\t.word\t0\n\t.word\t1\n\t.word\t.LPBX1\n"
        "\t.comm\t__gcov0.f,8,8\n";
    EXPECT_FALSE(read_gcc_text(small).record.has_checksum);
    EXPECT_EQ(read_gcc_text(small).record.version, 7U);
}

TEST(GccText, CountersKeepTheirAlignmentAndThoseJoinedByOrComeLast)
{
    // f: conditions and 3 counts, g: 1 count aligned to 32 bytes in a section of its own, h: none.
    const std::string text =
        tables(function_table("f", "\t.long\t3\n\t.zero\t4\n\t.quad\t__gcov0.f\n\t.long\t2\n"
                                   "\t.zero\t4\n\t.quad\t__gcov8.f\n") +
                   function_table("g", "\t.long\t1\n\t.zero\t4\n\t.quad\t__gcov0.g\n\t.long\t0\n"
                                       "\t.zero\t12\n"),
               "\t.quad\t__gcov_.f\n\t.quad\t__gcov_.g\n",
               "\t.quad\t__gcov_merge_add\n\t.quad\t0\n\t.quad\t0\n\t.quad\t0\n\t.quad\t0\n"
               "\t.quad\t0\n\t.quad\t0\n\t.quad\t0\n\t.quad\t__gcov_merge_ior\n") +
        "\t.comm\t__gcov8.f,16,16\n\t.comm\t__gcov0.f,24,16\n"
        "\t.section\t.bss.__gcov0.g,\"aw\",@nobits\n\t.align 5\n\t.type\t__gcov0.g, @object\n"
        "\t.size\t__gcov0.g, 8\n__gcov0.g:\n\t.zero\t8\n\torq\t$1, __gcov8.f(%rip)\n"
        "\tincq\t__gcov0.g(%rip)\n";
    const CounterText read = read_gcc_text(text);
    const RecordedCounters& record = read.record;
    EXPECT_EQ(record.functions[0].counters[0].offset, 0U);
    EXPECT_EQ(record.functions[1].counters[0].offset, 32U);
    EXPECT_EQ(record.functions[0].counters[1].kind, 8U);
    EXPECT_EQ(record.functions[0].counters[1].offset, 48U);
    EXPECT_EQ(record.array_bytes, 64U);
    EXPECT_EQ(record.or_bytes, 24U);
    const std::string renamed = with_array(read, "A");
    EXPECT_NE(renamed.find("\torq\t$1, A+48(%rip)\n\tincq\tA+32(%rip)\n"), renamed.npos) << renamed;
    EXPECT_EQ(renamed.find("__gcov"), renamed.npos) << renamed;
}

TEST(GccText, ASectionOfTablesAloneDoesNotAlignTheOneBefore)
{
    const std::string text = "\t.section\t.init_array,\"aw\"\n\t.quad\tstart\n"
                             "\t.section\t.bss.__gcov0.f,\"aw\",@nobits\n\t.align 32\n"
                             "__gcov0.f:\n\t.zero\t16\n" +
                             tables(ONE_TABLE, ONE_LIST);
    const std::string renamed = with_array(read_gcc_text(text), "A");
    EXPECT_EQ(renamed.substr(0, renamed.find("\t.section\t.data.rel.local")),
              "\t.section\t.init_array,\"aw\"\n\t.quad\tstart\n"
              "\t.section\t.lltcov_empty,\"e\",%progbits\n\t.align 32\n");
}

TEST(GccText, ObjectsOfGcc11CallTheRuntimeWithTheArray)
{
    const std::string text =
        "_sub_I_00100_0:\n\tleaq\t.LPBX0(%rip), %rdi\n\tjmp\t__gcov_init@PLT\n" +
        tables(ONE_TABLE, ONE_LIST) + ONE_COMMON;
    const std::string renamed = with_array(read_gcc_text(text), "A");
    EXPECT_EQ(renamed.substr(0, renamed.find("\t.section")),
              "_sub_I_00100_0:\n\tleaq\tA+0(%rip), %rdi\n\tjmp\t__gcov_init@PLT\n");
}

TEST(GccText, AnAddressSanitizerGuardsRoomInPlaceOfWhatIsLeftOut)
{
    // Each entry: variable, size, size with the guard after it, and more that is not ours.
    const std::string text = tables(ONE_TABLE, ONE_LIST) +
                             "__gcov0.f:\n\t.zero\t16\n\t.zero\t48\n" +
                             ".LASAN0:\n\t.quad\t.LPBX1\n\t.quad\t8\n\t.quad\t96\n\t.quad\t.LC1\n"
                             "\t.quad\tmine\n\t.quad\t8\n\t.quad\t64\n"
                             "\t.quad\t__gcov0.f\n\t.quad\t16\n\t.quad\t64\n\t.text\n";
    const CounterText read = read_gcc_text(text);
    const std::string renamed = with_array(read, "A");
    EXPECT_EQ(renamed.substr(renamed.find(".LASAN0")),
              ".LASAN0:\n\t.quad\tlltcov_guarded+0\n\t.quad\t8\n\t.quad\t96\n\t.quad\t.LC1\n"
              "\t.quad\tmine\n\t.quad\t8\n\t.quad\t64\n"
              "\t.quad\tlltcov_guarded+128\n\t.quad\t16\n\t.quad\t64\n\t.text\n"
              "\t.local\tlltcov_guarded\n\t.comm\tlltcov_guarded,192,64\n");
    EXPECT_EQ(read.record.array_bytes, 16U);
}

TEST(GccText, WhatIsNotUnderstoodIsRefused)
{
    const std::string sound = tables(ONE_TABLE, ONE_LIST) + ONE_COMMON;
    EXPECT_EQ(refusal(read_gcc_text, sound), "");
    EXPECT_EQ(refusal(read_gcc_text, "\t.text\n\tret\n"), "");
    const std::pair<const char*, std::string> rows[] = {
        {"a counter without a definition", sound + "\tincq\t__gcov0.g(%rip)\n"},
        {"counters without tables", ONE_COMMON},
        {"a counter of no table", sound + "\t.comm\t__gcov0.g,8,8\n\tincq\t__gcov0.g(%rip)\n"},
        {"another name of the compiler's", sound + "\tcall\t__gcov_indirect_call\n"},
        {"code that uses a table", sound + "\tlea\t.LPBX0(%rip), %rax\n"},
        {"too little room", tables(ONE_TABLE, ONE_LIST) + "\t.comm\t__gcov0.f,8,16\n"},
        {"too much alignment", tables(ONE_TABLE, ONE_LIST) + "\t.comm\t__gcov0.f,16,128\n"},
        {"a function without its table", tables("", ONE_LIST)},
        {"counters that join in another way",
         tables(ONE_TABLE, ONE_LIST, "\t.quad\t__gcov_merge_topn\n") + ONE_COMMON},
        {"a number that is none",
         tables(function_table("f", "\t.long\tx\n"), ONE_LIST) + ONE_COMMON},
    };
    for (const auto& [what, text] : rows) {
        EXPECT_NE(refusal(read_gcc_text, text).find("not understood"), std::string::npos) << what;
    }
    // Cut anywhere, a text is refused or read, and nothing is read beyond its end.
    for (std::size_t size = 0; size < sound.size(); ++size) {
        refusal(read_gcc_text, sound.substr(0, size));
    }
}

TEST(Records, ASymbolIsAnIdentifierOfAtMost31CharactersThatTellsTextsApart)
{
    const std::string symbol = symbol_of("/p/my source-file.cpp", {"a", "b"});
    EXPECT_EQ(symbol.size(), 31U);
    EXPECT_EQ(symbol.substr(0, 15), "my_source_file_");
    EXPECT_NE(symbol, symbol_of("/p/my source-file.cpp", {"ab", ""}));
    EXPECT_EQ(symbol_of("/p/1.c", {"a"}).substr(0, 5), "_1_c_");
}
