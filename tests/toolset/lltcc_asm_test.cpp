// Assembly in, regions with their lines out.
#include "examples/toolset/lltcc/asm_syntax.h"
#include "tests/fixture.h"
#include "tests/toolset/lltcc_asm_text.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

using Lines = std::set<int>;

/// The lines of each probe, in counter order.
std::vector<Lines> probe_lines(const std::string& text, Marks marks = Marks::count)
{
    SourceFiles files({});
    const AsmText read = scan_assembly(text, files, marks);
    std::vector<Lines> out;
    for (const std::size_t index : choose_probes(read)) {
        Lines lines;
        for (const SourceLine& line : read.regions[index].lines) {
            lines.insert(line.second);
        }
        out.push_back(lines);
    }
    return out;
}

struct RegionCase {
    const char* what;
    std::string body;
    std::vector<Lines> probes;
};

void expect_probes(const std::vector<RegionCase>& cases)
{
    for (const RegionCase& one : cases) {
        EXPECT_EQ(probe_lines(function(one.body)), one.probes) << one.what;
    }
}

using LltccSource = TestDir;

} // namespace

TEST(LltccRegions, LinesBelongToTheCodeThatRunsWithThem)
{
    expect_probes({
        {"prologue and body share a probe",
         CALL + "\t.loc 1 3 1\n\tmovl\t$1, %eax\n\tret\n",
         {{2, 3}}},
        {"a second probe begins a block, with the location before it",
         CALL + "\tnop\n\t.loc 1 4 1\n" + CALL + "\tnop\n",
         {{2}, {4}}},
        {"code behind a jump without a probe gets one when it has lines of its own",
         CALL + "\tje\t.L2\n\t.loc 1 5 1\n\tnop\n.L2:\n\t.loc 1 6 1\n" + CALL + "\tret\n",
         {{2}, {5}, {6}}},
        {"no extra probe for a line that has one",
         CALL + "\tje\t.L2\n\t.loc 1 2 9\n\tnop\n.L2:\n\t.loc 1 6 1\n" + CALL + "\tret\n",
         {{2}, {6}}},
        {"the line of a jump that only a nop keeps",
         CALL + "\tje\t.L2\n\t.loc 1 5 1\n" + CALL + "\tnop\n\t.loc 1 6 1\n\tjmp\t.L2\n" +
             ".L1:\n\t.loc 1 8 1\n" + CALL + "\tret\n" +
             ".L2:\n\t.loc 1 6 1\n\tnop\n\t.loc 1 7 1\n" + CALL + "\tret\n",
         {{2}, {5, 6}, {8}, {6}, {7}}},
        {"code behind a label without a location has none",
         CALL + "\tje\t.L2\n\t.loc 1 5 1\n" + CALL + ".L2:\n" + CALL + "\t.loc 1 7 1\n\tret\n",
         {{2}, {5}, {7}}},
        {"labels of debug information cut nothing",
         CALL + ".LVL1:\n\tnop\n.LBB2:\n\t.loc 1 3 1\n\tnop\n",
         {{2, 3}}},
        {"a call that may not return ends a block",
         CALL + "\t.loc 1 3 1\n\tcall\tf\n\tnop\n\t.loc 1 4 1\n\tnop\n",
         {{2, 3}, {4}}},
        {"no counter behind a call when no other line follows",
         CALL + "\t.loc 1 3 1\n\tcall\tf\n\tnop\n\tcall\tg@PLT\n\tret\n",
         {{2, 3}}},
        {"library functions that return end no block",
         CALL + "\t.loc 1 3 1\n\tcall\tmemcpy@PLT\n\t.loc 1 4 1\n\tnop\n",
         {{2, 3, 4}}},
        {"a line in which a block ends counts no block that only passes through it",
         CALL + "\t.loc 1 4 1\n\tje\t.L2\n\t.loc 1 3 1\n" + CALL +
             "\t.loc 1 4 1\n\tnop\n\t.loc 1 9 1\n\tret\n.L2:\n\t.loc 1 3 1\n" + CALL + "\tret\n",
         {{2, 4}, {9}, {3}}},
    });
}

TEST(LltccRegions, CodeThatSaysNothingAboutALineIsNotItsCode)
{
    expect_probes({
        {"the mark of a statement without code counts",
         CALL + "\tnop\n\t.loc 1 3 1 is_stmt 1\n\t.loc 1 4 1 is_stmt 0\n\tnop\n",
         {{2, 3, 4}}},
        {"a location that is no mark needs code",
         CALL + "\tnop\n\t.loc 1 3 1 is_stmt 0\n\t.loc 1 4 1\n\tnop\n",
         {{2, 4}}},
        {"a mark at a meeting point is not that of the way with the line's code",
         CALL + "\t.loc 1 3 1 is_stmt 0\n\tje\t.L2\n\t.loc 1 5 1 is_stmt 1\n" + CALL +
             "\tnop\n.L2:\n\t.loc 1 5 1\n\t.loc 1 6 1\n" + CALL + "\tret\n",
         {{2, 3}, {5}, {6}}},
        {"what takes the result of a call is no code of the next block",
         CALL + "\t.loc 1 5 1\n\tcall\tf\n\tsubl\t$1, %eax\n\t.loc 1 3 1\n\tje\t.L2\n" +
             "\t.loc 1 3 2\n" + CALL + "\tret\n.L2:\n" + CALL + "\tret\n",
         {{2, 5}, {3}, {3}}},
        {"the beginning of a function is a block, also without a probe",
         "\tpushq\t%rbx\n\t.loc 1 4 1 is_stmt 0\n\tmovl\t$9, %ebx\n\tjmp\t.L2\n"
         ".L3:\n\t.loc 1 4 2\n" +
             CALL + "\tdecl\t%ebx\n.L2:\n\t.loc 1 5 1\n" + CALL + "\tjne\t.L3\n\tret\n",
         {{2, 4}, {4}, {5}}},
        {"a value that is copied to where ways meet has no line",
         CALL + "\t.loc 1 8 1 is_stmt 0\n\tnop\n\t.loc 1 5 1\n\txorl\t%ebx, %ebx\n" +
             "\tjmp\t.L2\n.L2:\n" + CALL + "\tret\n",
         {{2, 8}}},
        {"a tail call has one, also when its arguments are copies",
         CALL + "\t.loc 1 8 1 is_stmt 0\n\tnop\n\t.loc 1 6 1\n\tmovl\t$1, %edi\n\tjmp\tg\n",
         {{2, 6, 8}}},
        {"inline assembly is code of its line, whatever stands in it",
         CALL + "\t.loc 1 3 1\n#APP\n# 3 \"t.c\" 1\n\tjmp 1f\n1:\n#NO_APP\n\t.loc 1 4 1\n\tnop\n",
         {{2, 3, 4}}},
    });
}

TEST(LltccRegions, ALineEndsBlocksOnlyInItsFunction)
{
    const std::string other = "\t.type\tg, @function\ng:\n\t.loc 1 3 1\n" + CALL + "\tret\n";
    EXPECT_EQ(probe_lines(function(CALL + "\t.loc 1 3 1\n\tnop\n\t.loc 1 5 1\n\tret\n") + other),
              (std::vector<Lines>{{2, 3, 5}, {3}}));
}

TEST(LltccRegions, ABlockOfClangCountsForAllItsLines)
{
    const std::string text = function(CALL + "\t.loc 1 3 1\n\tnop\n\t.loc 1 5 1\n\tje\t.L2\n" +
                                      "\t.loc 1 3 1\n" + CALL + "\tret\n.L2:\n" + CALL + "\tret\n");
    EXPECT_EQ(probe_lines(text), (std::vector<Lines>{{2, 5}, {3}}));
    EXPECT_EQ(probe_lines(text + "\t.ident\t\"clang version 14\"\n"),
              (std::vector<Lines>{{2, 3, 5}, {3}}));
}

TEST_F(LltccSource, TheStackIsClearedInFrontOfATailCallNotBehindIt)
{
    write_file("t.c", "\n\ng(); g();\n}\n");
    const std::string body = CALL + "\t.loc 1 3 1\n\tje\t.L2\n\t.loc 1 3 6\n" + CALL +
                             "\tnop\n\t.loc 1 4 1\n\tpopq\t%rbx\n\t.loc 1 3 6\n\tjmp\tg\n" +
                             ".L2:\n" + CALL + "\tret\n";
    EXPECT_EQ(probe_lines("\t.file 1 \"t.c\"\n" + function(body)),
              (std::vector<Lines>{{2, 3}, {3}}));
}

TEST(LltccRegions, MangledNamesTellTheWordAtTheDefinition)
{
    const struct {
        const char* symbol;
        const char* name;
    } CASES[] = {
        {"main", "main"},
        {"_Z4freei", "free"},
        {"_ZL6hiddenv", "hidden"},
        {"_ZN2ns5Class6methodEPKc", "method"},
        {"_ZNK2ns5Class6methodEv", "method"},
        {"_ZN12_GLOBAL__N_15localEv", "local"},
        {"_ZN5ClassC2Ev", "Class"},
        {"_ZN5ClassD0Ev", "Class"},
        {"_ZN5Class4textB5cxx11Ev", "text"},
        {"_Z4textB5cxx11v", "text"},
        {"_ZN5ClasseqERKS_", "operator"},
        {"_ZN5ClassIiE6methodEv", ""},
        {"_ZZ4mainENKUliE_clEi", ""},
    };
    for (const auto& one : CASES) {
        EXPECT_EQ(name_in_source(one.symbol), one.name) << one.symbol;
    }
}

TEST(LltccRegions, AFunctionWithoutProbesStaysAsItIs)
{
    const std::string text =
        function(CALL + "\tret\n") + "\t.type\tnaked, @function\nnaked:\n\t.loc 1 9 1\n\tret\n";
    EXPECT_EQ(probe_lines(text), std::vector<Lines>{{2}});
}

TEST(LltccRegions, WhatASanitizerAddsHasNoLines)
{
    const std::string text = function(CALL + "\tret\n") +
                             "\t.type\t_sub_I_00099_0, @function\n_sub_I_00099_0:\n" +
                             "\t.loc 1 9 1\n" + CALL + "\tcall\t__asan_init@PLT\n\tret\n";
    EXPECT_EQ(probe_lines(text), (std::vector<Lines>{{2}, {}}));
}

TEST(LltccRegions, WithoutDebugInformationAMarkOnlyStandsInForCode)
{
    const std::string text =
        function(CALL + "\t.loc 1 3 1 is_stmt 1\n\t.loc 1 4 1\n\t.loc 1 5 1" +
                 " is_stmt 0\n\tje\t.L2\n\t.loc 1 4 1\n" + CALL +
                 "\t.loc 1 7 1\n\tret\n.L2:\n\t.loc 1 6 1\n" + CALL + "\tret\n");
    EXPECT_EQ(probe_lines(text, Marks::stand_in), (std::vector<Lines>{{2, 3, 5}, {4, 7}, {6}}));
    EXPECT_EQ(probe_lines(text, Marks::count), (std::vector<Lines>{{2, 3, 4, 5}, {4, 7}, {6}}));

    const std::string inlined =
        function(CALL + "\t.loc 1 9 1 is_stmt 1\n\t.loc 1 3 1 is_stmt 0\n" +
                 "\tje\t.L2\n\t.loc 1 3 2\n" + CALL + "\tret\n.L2:\n" + CALL + "\tret\n");
    EXPECT_EQ(probe_lines(inlined, Marks::stand_in), (std::vector<Lines>{{2, 3, 9}, {3}}))
        << "the mark of the call that was inlined is not the end of the block";

    const std::string moved = function(CALL + "\t.loc 1 4 1 is_stmt 1\n.L2:\n\t.loc 1 4 2" +
                                       " is_stmt 0\n\taddl\t$1, %eax\n.L3:\n" + CALL + "\tret\n");
    EXPECT_EQ(probe_lines(moved, Marks::stand_in), (std::vector<Lines>{{2, 4}}))
        << "code without a probe takes no line from the block that has its mark";
}

TEST(LltccRegions, EachFunctionHasAFirstCounterAndOtherProbesWithoutLinesVanish)
{
    const std::string text = function(CALL + "\tje\t.L2\n" + CALL + ".L2:\n" + CALL + "\tret\n") +
                             "\t.type\tg, @function\ng:\n" + CALL + "\tret\n";
    EXPECT_EQ(probe_lines(text), (std::vector<Lines>{{2}, {}}));
    EXPECT_FALSE(contains(rewritten(text, Counters::words), "__sanitizer"));
}
