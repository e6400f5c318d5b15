// The reports of one small coverage, byte by byte.
#include "lltcov/report/report_formats.h"
#include "lltcov/report/report_text.h"

#include <gtest/gtest.h>

namespace
{

Report sample()
{
    Report report{"/p", Counting::conditions, {}, {}};
    SourceCoverage& source = report.coverage["/p/s/a.cpp"];
    source.lines = {{3, 2}, {10, 0}};
    source.functions = {{"_Z1fi", {3, 2}}};
    source.blocks[3]["_Z1fi"] = {2, {{2, false, true}, {0, true, false}}, {}};
    source.blocks[3]["_Z1gi"] = {0, {{0, false, true}}, {{{{true, false}, {true, true}}}}};
    report.coverage["/q/b.h"].lines = {{1, 5}};
    return report;
}

/// The sample without what only branches and conditions have.
Report sample_of_lines()
{
    Report report = sample();
    report.counting = Counting::lines;
    report.coverage["/p/s/a.cpp"].blocks.clear();
    return report;
}

std::string without_time(std::string text)
{
    const std::size_t time = text.find(" timestamp=\"");
    return text.erase(time, text.find('>', time) - time);
}

} // namespace

TEST(ReportFormats, LcovHasLinesFunctionsBranchesAndConditions)
{
    EXPECT_EQ(as_lcov(sample()), "TN:\nSF:/p/s/a.cpp\nFN:3,_Z1fi\nFNDA:2,_Z1fi\nFNF:1\nFNH:1\n"
                                 "BRDA:3,0,0,2\nBRDA:3,0,1,0\nBRDA:3,1,0,-\nBRF:3\nBRH:1\n"
                                 "MCDC:3,2,t,1,0,0\nMCDC:3,2,f,0,0,0\n"
                                 "MCDC:3,2,t,1,1,1\nMCDC:3,2,f,1,1,1\nMCF:4\nMCH:3\n"
                                 "DA:3,2\nDA:10,0\nLF:2\nLH:1\nend_of_record\n"
                                 "TN:\nSF:/q/b.h\nFNF:0\nFNH:0\nDA:1,5\nLF:1\nLH:1\n"
                                 "end_of_record\n");
}

TEST(ReportFormats, LcovHasASectionForEachTestAndNumbersBlocksAlikeInAll)
{
    Report report{"/p", Counting::conditions, {}, {}};
    SourceCoverage& whole = report.coverage["/b.h"];
    whole.lines = {{4, 2}, {9, 0}};
    whole.blocks[4]["_Z1fi"] = {0, {{0, false, true}}, {{{{false, false}}}}};
    whole.blocks[4]["_Z1fl"] = {2, {{2, false, true}}, {{{{false, true}}}}};
    whole.blocks[9]["main"] = {0, {{0, false, true}}, {}};
    SourceCoverage others = whole; // what runs without a test's name saw
    others.lines[4] = 0;
    others.blocks[4]["_Z1fl"] = {0, {{0, false, true}}, {{{{false, false}}}}};
    SourceCoverage test;
    test.lines = {{4, 2}};
    test.blocks[4]["_Z1fl"] = whole.blocks[4]["_Z1fl"];
    report.tests = {{"", {{"/b.h", others}}}, {"it-works", {{"/b.h", test}}}};
    EXPECT_EQ(as_lcov(report), "TN:\nSF:/b.h\nFNF:0\nFNH:0\n"
                               "BRDA:4,0,0,-\nBRDA:4,1,0,-\nBRDA:9,0,0,-\nBRF:3\nBRH:0\n"
                               "MCDC:4,2,t,0,0,0\nMCDC:4,2,f,0,0,0\n"
                               "MCDC:4,2,t,0,1,1\nMCDC:4,2,f,1,1,1\nMCF:4\nMCH:1\n"
                               "DA:4,0\nDA:9,0\nLF:2\nLH:0\nend_of_record\n"
                               "TN:it_works\nSF:/b.h\nFNF:0\nFNH:0\n"
                               "BRDA:4,0,0,-\nBRDA:4,1,0,2\nBRF:2\nBRH:1\n"
                               "DA:4,2\nLF:1\nLH:1\nend_of_record\n");
}

TEST(ReportFormats, JsonOfLinesHasNoBranches)
{
    EXPECT_EQ(as_json(sample_of_lines()),
              R"text({"format": "lltcov", "version": 1, "project": "/p",
"lines": {"hit": 2, "total": 3}, "functions": {"hit": 1, "total": 1},
"sources": [
{"path": "/p/s/a.cpp", "lines": {"hit": 1, "total": 2}, "functions": {"hit": 1, "total": 1}, "line_counts": [[3, 2], [10, 0]], "function_counts": [{"name": "f(int)", "symbol": "_Z1fi", "line": 3, "count": 2}]},
{"path": "/q/b.h", "lines": {"hit": 1, "total": 1}, "functions": {"hit": 0, "total": 0}, "line_counts": [[1, 5]], "function_counts": []}
]}
)text");
}

TEST(ReportFormats, JsonOfBranchesAndConditions)
{
    const std::string text = as_json(sample());
    for (const char* part : {
             R"("branches": {"hit": 1, "total": 3}, "conditions": {"hit": 3, "total": 4},)",
             R"("branch_counts": [{"line": 3, "symbol": "_Z1fi", "branches": [)"
             R"({"count": 2, "fallthrough": true, "throw": false}, )"
             R"({"count": 0, "fallthrough": false, "throw": true}]}, )"
             R"({"line": 3, "symbol": "_Z1gi", "branches": [)"
             R"({"count": 0, "fallthrough": true, "throw": false}]}])",
             R"("condition_outcomes": [{"line": 3, "symbol": "_Z1gi", "conditions": [)"
             R"([{"true": true, "false": false}, {"true": true, "false": true}]]}]})",
             R"("branch_counts": [], "condition_outcomes": []})",
         }) {
        EXPECT_NE(text.find(part), std::string::npos) << part << "\n" << text;
    }
}

TEST(ReportFormats, CoberturaHasPathsInTheProjectAndRates)
{
    EXPECT_EQ(without_time(as_cobertura(sample())), R"text(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE coverage SYSTEM "http://cobertura.sourceforge.net/xml/coverage-04.dtd">
<coverage line-rate="0.6667" branch-rate="0.3333" complexity="0" lines-covered="2" lines-valid="3" branches-covered="1" branches-valid="3" version="lltcov 1">
<sources><source>/p</source></sources>
<packages>
<package name="/q" line-rate="1.0000" branch-rate="0.0000" complexity="0"><classes>
<class name="b.h" filename="/q/b.h" line-rate="1.0000" branch-rate="0.0000" complexity="0"><methods>
</methods><lines>
<line number="1" hits="5" branch="false"/>
</lines></class>
</classes></package>
<package name="s" line-rate="0.5000" branch-rate="0.3333" complexity="0"><classes>
<class name="a.cpp" filename="s/a.cpp" line-rate="0.5000" branch-rate="0.3333" complexity="0"><methods>
<method name="f(int)" signature="" line-rate="1.0000" branch-rate="0.0000" complexity="0"><lines><line number="3" hits="2" branch="false"/></lines></method>
</methods><lines>
<line number="3" hits="2" branch="true" condition-coverage="33% (1/3)"><conditions><condition number="0" type="mcdc" coverage="75%"/></conditions></line>
<line number="10" hits="0" branch="false"/>
</lines></class>
</classes></package>
</packages>
</coverage>
)text");
}

TEST(ReportText, ReplacesBytesThatJsonAndXmlCannotHold)
{
    const struct {
        std::string text, json, xml;
    } cases[] = {
        {"a<b>&\"c\\", R"("a<b>&\"c\\")", "a&lt;b&gt;&amp;&quot;c\\"},
        {"t\tn\n", R"("t\u0009n\u000a")", "t\xEF\xBF\xBDn\xEF\xBF\xBD"},
        {"\xC3\xA9\xF0\x9F\x98\x80", "\"\xC3\xA9\xF0\x9F\x98\x80\"", "\xC3\xA9\xF0\x9F\x98\x80"},
        {"x\xFFy", "\"x\xEF\xBF\xBDy\"", "x\xEF\xBF\xBDy"},
        {"cut\xC3", "\"cut\xEF\xBF\xBD\"", "cut\xEF\xBF\xBD"},
        {"\xED\xA0\x80", "\"\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\"",
         "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"}, // half of a pair is no character
    };
    for (const auto& bytes : cases) {
        EXPECT_EQ(json_string(bytes.text), bytes.json);
        EXPECT_EQ(xml_text(bytes.text), bytes.xml);
    }
    EXPECT_EQ(demangled("_ZN1n3addIiEET_S1_S1_"), "int n::add<int>(int, int)");
    EXPECT_EQ(demangled("i"), "i"); // no mangled name, though "i" is a mangled type
}
