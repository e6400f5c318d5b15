// Texts as clang writes them, cut down to what matters.
#include "tests/refusal.h"
#include "toolset/counters/counter_text.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

const char SUM_CODE[] = "sum:\n\taddq\t$1, .L__profc_sum+8(%rip)\n\tret\n";

/// The section of names, whose size is written as an octal escape.
std::string names(const std::string& size, const std::string& list)
{
    return "\t.type\t.L__llvm_prf_nm,@object\n"
           "\t.section\t__llvm_prf_names,\"a\",@progbits,unique,5\n"
           ".L__llvm_prf_nm:\n"
           "\t.ascii\t\"\\" +
           size + "\\000" + list + "\"\n\t.size\t.L__llvm_prf_nm, 5\n";
}

/// Label, kind "c" or "d", of what belongs to the function of that symbol.
std::string label(const std::string& symbol, const std::string& kind)
{
    return symbol[0] == '"' ? "\".L__prof" + kind + "_" + symbol.substr(1)
                            : ".L__prof" + kind + "_" + symbol;
}

std::string counters_of(const std::string& symbol, int alignment, int size)
{
    const std::string name = label(symbol, "c");
    return "\t.type\t" + name + ",@object         # @__profc\n\t.hidden\t" + name +
           "\n\t.section\t__llvm_prf_cnts,\"awG\",@progbits," + name + ",comdat\n\t.weak\t" + name +
           "\n\t.p2align\t" + std::to_string(alignment) + ", 0x0\n" + name + ":\n\t.zero\t" +
           std::to_string(size) + "\n\t.size\t" + name + ", 8\n\n";
}

/// `values` are the table's first words: hashes of the name and of the function's structure.
std::string table_of(const std::string& symbol, const std::string& values)
{
    const std::string name = label(symbol, "d");
    return "\t.section\t__llvm_prf_data,\"awG\",@progbits," + name + ",comdat\n\t.p2align\t3\n" +
           name + ":\n" + values + "\t.quad\t" + label(symbol, "c") + "-" + name +
           "\n\t.long\t2\n\t.zero\t4\n\t.size\t" + name + ", 32\n";
}

const char VALUES[] = "\t.quad\t-2                      # 0xfffffffffffffffe\n"
                      "\t.quad\t4660                    # 0x1234\n";

std::string defined(const std::string& symbol, int alignment, int size,
                    const std::string& values = VALUES)
{
    return counters_of(symbol, alignment, size) + table_of(symbol, values);
}

std::string with_sum(const std::string& code)
{
    return code + defined("sum", 3, 16) + names("003", "sum");
}

} // namespace

TEST(ClangText, CountersBecomePlacesAndTheRestStays)
{
    const std::string end = "\t.ident\t\"clang\"\n\t.section\t\".note.GNU-stack\",\"\",@progbits\n";
    const std::string text = with_sum(SUM_CODE) + end;
    const CounterText read = read_clang_text(text);
    EXPECT_EQ(with_array(read, "A"),
              "sum:\n\taddq\t$1, A+0+8(%rip)\n\tret\n" + names("003", "sum") + end);
    EXPECT_EQ(read.record.array_bytes, 16U);
    EXPECT_EQ(read.record.or_bytes, 0U);
    ASSERT_EQ(read.record.functions.size(), 1U);
    const RecordedFunction& function = read.record.functions[0];
    EXPECT_EQ(function.name, "sum");
    EXPECT_EQ(function.hash, 0x1234U);
    ASSERT_EQ(function.counters.size(), 1U);
    EXPECT_EQ(function.counters[0].kind, 0U);
    EXPECT_EQ(function.counters[0].number, 2U);
    EXPECT_EQ(function.counters[0].offset, 0U);
}

TEST(ClangText, EveryMachinesWayToNameACounterIsKept)
{
    const struct {
        const char* line;
        const char* expected;
    } CASES[] = {
        {"\tmovl\t$.L__profc_sum, %eax\n", "\tmovl\t$A+0, %eax\n"},
        {"\tadd qword ptr [rip + .L__profc_sum+8], 1\n", "\tadd qword ptr [rip + A+0+8], 1\n"},
        {"\tadcl\t$0, .L__profc_sum@GOTOFF+4(%eax)\n", "\tadcl\t$0, A+0@GOTOFF+4(%eax)\n"},
        {"\tldr\tx8, [x9, :lo12:.L__profc_sum]\n", "\tldr\tx8, [x9, :lo12:A+0]\n"},
        {"\tauipc\ta1, %pcrel_hi(.L__profc_sum)\n", "\tauipc\ta1, %pcrel_hi(A+0)\n"},
        {"\t.long\t.L__profc_sum-(.LPC0_0+8)\n", "\t.long\tA+0-(.LPC0_0+8)\n"},
        {"\tcallq\t__profile_me\n", "\tcallq\t__profile_me\n"},
        {"\t.asciz\t\".L__profc_sum\"\n", "\t.asciz\t\".L__profc_sum\"\n"},
    };
    for (const auto& one : CASES) {
        SCOPED_TRACE(one.line);
        const std::string text = with_sum(one.line);
        EXPECT_EQ(with_array(read_clang_text(text), "A"), one.expected + names("003", "sum"));
    }
}

TEST(ClangText, NamesAreThoseOfProfilesNotOfSymbols)
{
    const struct {
        const char* symbol;
        const char* size;
        const char* list;
        const char* name;
    } CASES[] = {
        {"_Z4pickIiET_S0_S0_", "022", "_Z4pickIiET_S0_S0_", "_Z4pickIiET_S0_S0_"},
        {"a.c_help", "010", "a.c:help", "a.c:help"},
        {"my_file.c_help", "024", "a.c:f\\001my-file.c:help", "my-file.c:help"},
        {"\"a b.c_help\"", "012", "a b.c:help", "a b.c:help"},
        {"\"a.c_gr\303\266\"", "010", "a.c:gr\\303\\266", "a.c:gr\303\266"},
    };
    for (const auto& one : CASES) {
        SCOPED_TRACE(one.symbol);
        const std::string text =
            defined(one.symbol, 3, 8, "\t.quad\t1\n\t.quad\t0x18\n") + names(one.size, one.list);
        const RecordedCounters record = read_clang_text(text).record;
        ASSERT_EQ(record.functions.size(), 1U);
        EXPECT_EQ(record.functions[0].name, one.name);
        EXPECT_EQ(record.functions[0].hash, 24U);
    }
}

TEST(ClangText, HashesMayBeWrittenAsHalves)
{
    // 0x0000000200000001 and 0x0000000400000003
    const struct {
        const char* values;
        const char* record; ///< of the coverage map, named after the first hash
    } CASES[] = {
        {"\t.long\t1                       @ 0x200000001\n\t.long\t2\n\t.long\t3\n\t.long\t4\n",
         "__covrec_200000001u:\n"},
        {"\t.long\t2\n\t.long\t1\n\t.long\t4\n\t.long\t3\n", "__covrec_200000001:\n"},
    };
    for (const auto& one : CASES) {
        SCOPED_TRACE(one.values);
        const std::string text = one.record + defined("f", 3, 8, one.values) + names("001", "f");
        EXPECT_EQ(read_clang_text(text).record.functions.at(0).hash, 0x400000003U);
    }
}

TEST(ClangText, EachCounterKeepsItsAlignment)
{
    const std::string text = "\tincq\t__profc_g(%rip)\n\tincq\t__profc_h(%rip)\n" +
                             defined("f", 3, 24) + defined("g", 5, 8) + defined("h", 2, 16) +
                             names("005", "f\\001g\\001h");
    const CounterText read = read_clang_text(text);
    EXPECT_EQ(read.record.array_bytes, 56U);
    EXPECT_EQ(read.record.functions.at(1).counters.at(0).offset, 32U);
    EXPECT_EQ(read.record.functions.at(2).counters.at(0).offset, 40U);
    EXPECT_EQ(with_array(read, "A"),
              "\tincq\tA+32(%rip)\n\tincq\tA+40(%rip)\n" + names("005", "f\\001g\\001h"));
}

TEST(ClangText, ATextWithoutCountersIsLeftAsItIs)
{
    const std::string text = "x:\n\t.long\t3\n" + names("001", "f");
    const CounterText read = read_clang_text(text);
    EXPECT_EQ(with_array(read, "A"), text);
    EXPECT_EQ(read.record.array_bytes, 0U);
    EXPECT_TRUE(read.record.functions.empty());
}

TEST(ClangText, WhatIsNotUnderstoodIsRefused)
{
    ASSERT_EQ(refusal(read_clang_text, with_sum(SUM_CODE)), "");
    for (const char* line :
         {"\t.set\tx, .L__profc_sum\n", "\tincq\t.L__profc_other(%rip)\n",
          "\tleaq\t.L__profd_sum(%rip), %rax\n", "\tmovq\t.L__profc_sum@GOTPCREL(%rip), %rax\n",
          "\tldr\tx8, [x8, :got_lo12:.L__profc_sum]\n", "\tlw\t$1, %got(.L__profc_sum)($2)\n",
          "\t.long\t.L__profc_sum(GOT_PREL)\n", "\tmovq\t__llvm_profile_counter_bias(%rip), %rax\n",
          "\tleaq\t.L__profbm_sum(%rip), %rax\n", "\tcallq\t__llvm_profile_instrument_target@PLT\n",
          "__profc_late:\n"}) {
        EXPECT_NE(refusal(read_clang_text, with_sum(std::string(SUM_CODE) + line)), "") << line;
    }
}

TEST(ClangText, DefinitionsThatAreNotWholeAreRefused)
{
    const struct {
        const char* what;
        std::string text;
    } CASES[] = {
        {"counters without a table", counters_of("sum", 3, 16) + names("003", "sum")},
        {"a table without counters", table_of("sum", VALUES) + names("003", "sum")},
        {"no name", defined("sum", 3, 16) + names("003", "sun")},
        {"names that are compressed",
         defined("sum", 3, 16) +
             "\t.section\t__llvm_prf_names,\"a\"\n\t.ascii\t\"\\003\\013sum\"\n"},
        {"two names of one symbol", defined("a.c_f_g", 3, 8) + names("017", "a.c:f_g\\001a.c_f:g")},
        {"counters of one byte", defined("f", 0, 1) + names("001", "f")},
        {"an alignment that no array has", defined("f", 7, 8) + names("001", "f")},
        {"counters with values",
         "\t.section\t__llvm_prf_cnts,\"aw\"\n.L__profc_sum:\n\t.quad\t-1\n" +
             table_of("sum", VALUES) + names("003", "sum")},
        {"labels of another kind",
         "\t.section\t__llvm_prf_cnts,\"aw\"\n$__profc_sum:\n\t.zero\t8\n" +
             table_of("sum", VALUES) + names("003", "sum")},
    };
    for (const auto& one : CASES) {
        EXPECT_NE(refusal(read_clang_text, one.text), "") << one.what;
    }
}
