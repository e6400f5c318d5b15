#include "commonfunc/Caddis_func.h"
#include "lltwrapper/step_plan.h"
#include "lltwrapper/wrapper_state.h"
#include "tests/fixture.h"
#include "tests/lltwrapper/words.h"

using Classify = TestDir;

TEST_F(Classify, RecordsTheFirstArchiveAfterTheArchiver)
{
    const std::string a(254, 'a');
    const struct {
        const char* what;
        std::string suffix, command;
        std::string archive, module;
    } rows[] = {
        {"the suffix in any case", ".a", "x.a /b/AR r out/libm.x.A b.a", "out/libm.x.A", "libm"},
        {"an option's value counts", ".a", "ar rcs -projectname N.a libm.a", "N.a", "N"},
        {"a suffix option's value does not", ".a", "ar rcs -ARSUFFIX x.a libq.a", "libq.a", "libq"},
        {"the suffix alone", ".a", "ar rcs .a", ".a", ""},
        {"a suffix without a dot", "a", "ar rcs libm.a", "", ""},
        {"every hyphen of a module name", ".a", "ar rcs lib-my-own-m.a", "lib-my-own-m.a",
         "lib_my_own_m"},
        {"the name of an output as well", ".a", "ar libm.a -o " + a + ".so", "libm.a", a + "_"},
    };
    ::setenv("LLTLD_AVOID_SAME_NAME", "1", 1);
    ::setenv("qmr_current_prj_path", dir.c_str(), 1);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        arname = strLinkName = "", strArTools = "ar", strArSuffix = row.suffix;
        with_words("lltwrapper " + row.command,
                   [](int argc, char** argv) { checkstate(argc, argv); });
        EXPECT_EQ(arname, row.archive);
        EXPECT_EQ(strLinkName, row.module);
    }
    EXPECT_EQ(lltld_flag, 1);                       // the output of the last one beats the archiver
    EXPECT_EQ(g_lxprj->szObjFile, dir + "/libm.a"); // made absolute before it exists
}
