// Regions in, counters out; those of this machine are run.
#include "examples/toolset/lltcc/counter_code.h"
#include "tests/fixture.h"
#include "tests/toolset/lltcc_asm_text.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace
{

using LltccCounterCode = TestDir;

} // namespace

TEST(LltccCounters, EveryFormOfAProbeIsReplaced)
{
    const struct {
        const char* probe;
        bool returns; ///< the probe was a jump, so a return follows the count
    } CASES[] = {
        {"\tcall\t__sanitizer_cov_trace_pc", false},
        {"\tcall\t__sanitizer_cov_trace_pc@PLT", false},
        {"\tcallq\t__sanitizer_cov_trace_pc@PLT", false},
        {"\tcall\t*__sanitizer_cov_trace_pc@GOTPCREL(%rip)", false},
        {"\tcall\t[QWORD PTR __sanitizer_cov_trace_pc@GOTPCREL[rip]]", false},
        {"\tjmp\t__sanitizer_cov_trace_pc", true},
        {"\tjmp\t*__sanitizer_cov_trace_pc@GOTPCREL(%rip)", true},
        {"\tjmp\t__sanitizer_cov_trace_pc@PLT                # TAILCALL", true},
        {"\tbl\t__sanitizer_cov_trace_pc", false},
        {"\tb\t__sanitizer_cov_trace_pc", true},
    };
    for (const auto& one : CASES) {
        SCOPED_TRACE(one.probe);
        const std::string text =
            rewritten(function(std::string(one.probe) + "\n"), Counters::words);
        EXPECT_FALSE(contains(text, "__sanitizer"));
        EXPECT_EQ(contains(text, "\tret\n"), one.returns);
        EXPECT_TRUE(contains(text, "A@GOTPCREL(%rip)") || contains(text, ":got:A"));
    }
}

TEST(LltccCounters, AnUnknownFormIsRefused)
{
    SourceFiles files({});
    for (const char* probe :
         {"\tmovabsq\t$__sanitizer_cov_trace_pc@PLTOFF, %rax\n", "\tje\t__sanitizer_cov_trace_pc\n",
          "\tcall\t__sanitizer_cov_trace_pc_guard\n"}) {
        SCOPED_TRACE(probe);
        EXPECT_THROW(scan_assembly(function(probe), files, Marks::count), NotInstrumentable);
        EXPECT_THROW(scan_assembly(function(CALL + probe), files, Marks::count), NotInstrumentable);
    }
}

TEST(LltccCounters, CountersLieWhereTheModeSays)
{
    std::string body;
    for (int i = 0; i < 34; ++i) {
        body += CALL;
    }
    EXPECT_TRUE(contains(rewritten(function(body), Counters::words), "adcl\t$0, 132(%r11)"));
    EXPECT_TRUE(contains(rewritten(function(body), Counters::bytes), "adcb\t$0, 33(%r11)"));
    EXPECT_TRUE(contains(rewritten(function(body), Counters::bits), "orl\t$2, 4(%r11)"));
}

// The flags are those that code can branch on: carry, parity, adjust, zero, sign, overflow.
TEST_F(LltccCounterCode, CodeAroundACounterKeepsRegistersAndFlags)
{
#ifndef __x86_64__
    GTEST_SKIP() << "the code is for x86-64";
#endif
    for (const Counters counters : {Counters::bits, Counters::bytes, Counters::words}) {
        const Rewriting how = {"A", counters};
        write_file("try.s", "\t.globl try\ntry:\tpushq %rdi\n\tpopfq\n\tmovl $42, %eax\n"
                            "\tmovl $43, %r11d\n\tmovq $44, -8(%rsp)\n" +
                                count_anywhere(Machine::x86_64, how, 3) +
                                "\tmovq -8(%rsp), %rcx\n\tpushfq\n\tpopq %rdx\n"
                                "\taddq %r11, %rcx\n\taddq %rcx, %rax\n\tshlq $16, %rax\n"
                                "\torq %rdx, %rax\n\tret\n"
                                "\t.section .note.GNU-stack,\"\",@progbits\n");
        write_file("main.c", "unsigned A[8]; extern unsigned long try(unsigned long);\n"
                             "int main(void) { for (unsigned long f = 0; f < 4096; f++)\n"
                             "if ((f & ~0x8d5ul) == 0 && (try(f | 0x202) & ~0x202ul) !=\n"
                             "((42 + 43 + 44ul) << 16 | f)) return 1;\n"
                             "return A[0] + A[3] == 0 ? 2 : 0; }\n");
        EXPECT_EQ(std::system("cc main.c try.s -o main && ./main"), 0);
    }
}

TEST(LltccCounters, OnlyUnwantedDebugInformationGoes)
{
    const std::string text = function(CALL + "\tret\n") +
                             "\t.section\t.debug_str,\"MS\",@progbits,1\n.LASF0:\n"
                             "\t.string\t\"__sanitizer_cov_trace_pc\"\n\t.ident\t\"C\"\n"
                             "\t.section\t.rodata\n\t.string\t\"kept\"\n";
    const std::string bare = rewritten(text, Counters::words, true);
    EXPECT_FALSE(contains(bare, ".loc") || contains(bare, ".LASF0") || contains(bare, "debug_str"));
    EXPECT_TRUE(contains(bare, ".ident") && contains(bare, "\"kept\"") &&
                contains(bare, ".file\t\"t.c\""));
    EXPECT_TRUE(contains(rewritten(text, Counters::words), "\"__sanitizer_cov_trace_pc\""));
}
