#include "commonfunc/Caddis_func.h"
#include "lltwrapper/step_plan.h"
#include "lltwrapper/wrapper_state.h"
#include "tests/fixture.h"

#include <wordexp.h>

TEST_F(TestDir, TheFirstArchiveBehindTheArchiverIsRecorded)
{
    const std::string a(254, 'a');
    const std::string rows[][4] = {{".a", "x.a /b/AR r out/libm.x.A b.a", "out/libm.x.A", "libm"},
                                   {".a", "ar rcs -projectname N.a libm.a", "N.a", "N"},
                                   {".a", "ar rcs -ARSUFFIX x.a libq.a", "libq.a", "libq"},
                                   {".a", "ar rcs .a", ".a", ""},
                                   {"a", "ar rcs libm.a", "", ""},
                                   {".a", "ar libm.a -o " + a + ".so", "libm.a", a + "_"}};
    ::setenv("LLTLD_AVOID_SAME_NAME", "1", 1);
    ::setenv("qmr_current_prj_path", dir.c_str(), 1);
    for (const auto& [suffix, command, archive, name] : rows) {
        arname = strLinkName = "", strArTools = "ar", strArSuffix = suffix;
        wordexp_t words;
        ASSERT_EQ(::wordexp(("lltwrapper " + command).c_str(), &words, 0), 0);
        checkstate(static_cast<int>(words.we_wordc), words.we_wordv);
        ::wordfree(&words);
        EXPECT_EQ(arname + " " + strLinkName, archive + " " + name) << command;
    }
    EXPECT_EQ(lltld_flag, 1);                       // the output of the last one beats the archiver
    EXPECT_EQ(g_lxprj->szObjFile, dir + "/libm.a"); // made absolute before it exists
}
