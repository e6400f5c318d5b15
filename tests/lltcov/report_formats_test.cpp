// The reports of one small coverage, byte by byte.
#include "lltcov/report_formats.h"
#include "lltcov/report_text.h"

#include <gtest/gtest.h>

namespace
{

Report sample()
{
    Report report{"/p", {}};
    report.coverage["/p/s/a.cpp"].lines = {{3, 2}, {10, 0}};
    report.coverage["/p/s/a.cpp"].functions = {{"_Z1fi", {3, 2}}};
    report.coverage["/q/b.h"].lines = {{1, 5}};
    return report;
}

} // namespace

TEST(ReportFormats, Lcov)
{
    EXPECT_EQ(as_lcov(sample()), "TN:\nSF:/p/s/a.cpp\nFN:3,_Z1fi\nFNDA:2,_Z1fi\nFNF:1\nFNH:1\n"
                                 "DA:3,2\nDA:10,0\nLF:2\nLH:1\nend_of_record\n"
                                 "TN:\nSF:/q/b.h\nFNF:0\nFNH:0\nDA:1,5\nLF:1\nLH:1\n"
                                 "end_of_record\n");
}

TEST(ReportFormats, Json)
{
    EXPECT_EQ(as_json(sample()),
              R"text({"format": "lltcov", "version": 1, "project": "/p",
"lines": {"hit": 2, "total": 3}, "functions": {"hit": 1, "total": 1},
"sources": [
{"path": "/p/s/a.cpp", "lines": {"hit": 1, "total": 2}, "functions": {"hit": 1, "total": 1}, "line_counts": [[3, 2], [10, 0]], "function_counts": [{"name": "f(int)", "symbol": "_Z1fi", "line": 3, "count": 2}]},
{"path": "/q/b.h", "lines": {"hit": 1, "total": 1}, "functions": {"hit": 0, "total": 0}, "line_counts": [[1, 5]], "function_counts": []}
]}
)text");
}

TEST(ReportFormats, Cobertura)
{
    std::string text = as_cobertura(sample());
    const std::size_t time = text.find(" timestamp=\"");
    text.erase(time, text.find('>', time) - time);
    EXPECT_EQ(text, R"text(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE coverage SYSTEM "http://cobertura.sourceforge.net/xml/coverage-04.dtd">
<coverage line-rate="0.6667" branch-rate="0" complexity="0" lines-covered="2" lines-valid="3" branches-covered="0" branches-valid="0" version="lltcov 1">
<sources><source>/p</source></sources>
<packages>
<package name="/q" line-rate="1.0000" branch-rate="0" complexity="0"><classes>
<class name="b.h" filename="/q/b.h" line-rate="1.0000" branch-rate="0" complexity="0"><methods>
</methods><lines>
<line number="1" hits="5" branch="false"/>
</lines></class>
</classes></package>
<package name="s" line-rate="0.5000" branch-rate="0" complexity="0"><classes>
<class name="a.cpp" filename="s/a.cpp" line-rate="0.5000" branch-rate="0" complexity="0"><methods>
<method name="f(int)" signature="" line-rate="1.0000" branch-rate="0" complexity="0"><lines><line number="3" hits="2" branch="false"/></lines></method>
</methods><lines>
<line number="3" hits="2" branch="false"/>
<line number="10" hits="0" branch="false"/>
</lines></class>
</classes></package>
</packages>
</coverage>
)text");
}

TEST(ReportText, HoldsAnyBytes)
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
