// What the built program prints for a command, and what the tools receive.
#include "tests/e2e/end_to_end.h"

#include <vector>

namespace
{

/// A command whose tool succeeds. Environment and arguments are quoted as for a shell.
struct Row {
    const char* what;
    std::string env, args;     ///< NAME=value sets, -u NAME unsets
    std::string before = {};   ///< printed before the rebuilt command, with the driver's own words
    std::string rebuilt = {};  ///< the rebuilt command, when it is not `args`
    std::string received = {}; ///< how the tool records it, when not the same words
    std::string warning = {};
};

std::string cc(const std::string& root = "/p")
{
    return "lltcc cmd:\n lltcc -qmr_current_prj_path " + root +
           " -projectname LLTTEMP  -qmr_coverage_stub_mold 2 ";
}

std::string ld(const std::string& name, const std::string& driver = "lltld")
{
    return "lltld cmd:\n " + driver + " -qmr_current_prj_path /p -projectname " + name +
           " -qmr_coverage_stub_mold 2 ";
}

std::string info(const std::string& text, const std::string& value)
{
    return "\033[0;32;34mTUSK_INFO:\n" + text + ":: " + value + "\n\033[m";
}

std::string in_brackets(const std::string& words)
{
    return std::regex_replace(words, std::regex(" *([^ ]+) +"), "[$1]");
}

class Forwarding : public EndToEnd
{
protected:
    void check(const std::vector<Row>& rows)
    {
        for (const Row& row : rows) {
            SCOPED_TRACE(row.what + (": " + row.env) + " lltwrapper " + row.args);
            const std::size_t title = row.before.find("cmd:\n ");
            const std::string driver = title == row.before.npos ? "" : row.before.substr(title + 6);
            const std::string rebuilt = row.rebuilt.empty() ? row.args + " " : row.rebuilt;
            const std::string words = row.received.empty() ? in_brackets(rebuilt) : row.received;
            EXPECT_EQ(run(row.env, row.args), 0);
            const std::string call = in_brackets(driver) + words;
            EXPECT_EQ(calls, call + "\n");
            EXPECT_EQ(out, row.before + rebuilt + (driver.empty() ? "" : " \n") +
                               call.substr(1, call.find(']') - 1) + " ran\n");
            EXPECT_TRUE(warns(row.warning)) << err;
        }
    }
};

TEST_F(Forwarding, EachModeForwardsItsCommand)
{
    const std::string no_name = "error \"projectname\". \r\n", avoid = "LLTLD_AVOID_SAME_NAME=";
    check({
        {"-c is a compile", "", "gcc -c -o a.o a.c", cc()},
        {"-o of its own word is a link, -oapp is not", "", "gcc -oapp a.o"},
        {"the last output names the module", "", "gcc -o d.1/e.f -o b.c/a.o.x", ld("a")},
        {"byte 208 ends the name", "", "gcc -o a\xD0\xB0p", ld("a")},
        {"cut at the first full stop", avoid + "2", "gcc -o libx.so.1", ld("libx")},
        {"full stops as underscores", avoid + "1", "gcc -o d.1/libx.so.1", ld("libx_so_1")},
        {"a kernel image by its own name", avoid + "1", "gcc -o .tmp_vmlinux1", ld("tmp_vmlinux1")},
        {"a hidden output", avoid + "1", "gcc -o .x", ld("_x")},
        {"mod.o of a kernel unchanged", "lltwrapper_cfg=2x", "gcc -c -o mod.o"},
        {".mod.o at the end", "lltwrapper_cfg=2", "gcc -c -o a.mod.o.mod.o"},
        {"mod.o in a directory is compiled", "lltwrapper_cfg=2", "gcc -c -o d/mod.o", cc()},
        {"only the output counts", "lltwrapper_cfg=2", "gcc -c x.mod.o", cc()},
        // The rebuild and the classification do not take the same words for options.
        {"upper case is skipped but forwarded", "", "gcc -OBJSUFFIX .o -ARTOOL -c a.c -o a.o",
         ld("a")},
        {"an option takes -c as its value", "", "gcc -objsuffix -c a.c -o a.o", ld("a"),
         "gcc a.c -o a.o "},
        {"-c before an option", "", "gcc -c -objsuffix .o a.c", cc()},
        {"options of the project", "", "gcc -qmr_current_prj_path -c -projectname N a.c", cc(),
         "gcc a.c "},
        {"-E as a value still decides", "", "gcc -c a.c -qmr_coverage_stub_mold -E", "",
         "gcc -c a.c "},
        {"an option without a value", "", "gcc -LLTWRAPPER_ENVFILE -c a.c", cc(), "gcc a.c "},
        {"an option that clang does not know", "", "gcc -mshort-load-bytes -c a.c", cc(),
         "gcc a.c "},
        {"-c as the output", "", "gcc a.c -o -c", cc()},
        {"-o at the end", "", "gcc a.o -o"},
        {"-Xlinker at the end", "", "gcc a.o -Xlinker"},
        {"a project option at the end", "", "gcc a.o -qmr_current_prj_path", no_name, "gcc a.o ",
         "", "-qmr_current_prj_path"},
        {"a project option alone", "", "gcc a.o -qmr_current_prj_path P", no_name, "gcc a.o "},
        {"a project option first", "", "gcc -qmr_current_prj_path P a.o", no_name, "gcc a.o "},
    });
    run("qmr_current_prj_path=.", "ar rcs libm.a -artool ar -arsuffix .a");
    EXPECT_EQ(calls, "[ar][rcs][libm.a]\n");
}

TEST_F(Forwarding, ArgumentsAreRewrittenAndEscaped)
{
    write_file("a <\"(b)\">.o", "");
    const std::string path = "gcc -Wl,-rpath,\\$ORIGIN:$ORIGIN  ";
    const std::string bare = "gcc x-Wl,-rpath\\$$ORIGIN  ";
    // 132,000 bytes: more than one argument of a shell may hold.
    const std::string many =
        std::regex_replace(std::string(11000, 'd'), std::regex("d"), " include/dir");
    check({
        {"a long command", "", "gcc -E -DX=" + std::string(600, 'a') + many},
        {"a path with signs of the shell", "", "gcc 'a <\"(b)\">.o'", "",
         "gcc a\\ \\<\\\"\\(b\\)\\\"\\>.o ", "[gcc][a <\"(b)\">.o]"},
        {"quotes of a definition, an output with a blank", "", "gcc '-DN=\"b\"' -o 'a b'",
         ld("a32b"), "gcc -DN=\\\"b\\\" -o a\\ b ", "[gcc][-DN=\"b\"][-o][a b]"},
        {"variables stay for the shell", "M=m", "gcc \"-DX='q'\" -D '$M'", "", "gcc -DX='q' -D $M ",
         "[gcc][-DX=q][-D][m]"},
        {"the word after -Xlinker is quoted", "M=m", "gcc -Xlinker '$M b'", "",
         "gcc -Xlinker \"$M b\" ", "[gcc][-Xlinker][m b]"},
        {"after -Xlinker nothing is an option", "", "gcc -Xlinker -E", "", "gcc -Xlinker \"-E\" ",
         "[gcc][-Xlinker][-E]"},
        {"a value is escaped, missing or not", "", "gcc -I 'a b' '-La b' -l 'a b' -S 'a b'", "",
         "gcc -I a\\ b -La\\ b -l a\\ b -S a\\ b ", "[gcc][-I][a b][-La b][-l][a b][-S][a b]"},
        {"+sec goes, a missing path is not escaped", "", "gcc -Wa,-march=armv7-a+sec 'no such.o'",
         "", "gcc -Wa,-march=armv7-a no such.o "},
        {"the first $ORIGIN of a path", "", "gcc '-Wl,-rpath,$ORIGIN:$ORIGIN'",
         "cmd:: " + path + "\n", path, "[gcc][-Wl,-rpath,$ORIGIN:]"},
        {"$ORIGIN of another word", "", "gcc 'x-Wl,-rpath,$ORIGIN'", "cmd:: " + bare + "\n", bare,
         "[gcc][x-Wl,-rpath$]"},
        {"percent pairs are printed once and run whole", "", "gcc a%% %%% %s%n %", "",
         "gcc a% %% %s%n % ", "[gcc][a%%][%%%][%s%n][%]"},
        {"percent pairs of a compile are printed whole", "", "gcc -c a%%.c", cc()},
    });
}

TEST_F(Forwarding, TheEnvironmentNamesTheProjectAndTheTarget)
{
    const std::string on = "TUSK_ENABLE_m32m64=1", x(254, 'x'), deep(300, 'd');
    std::string codes;
    const std::string deletes(4000, '\x7F');
    for (int i = 0; i < 255; ++i) {
        codes += "127"; // of that sign
    }
    const std::string root = "qmr_current_prj_path", mode = "qmr_coverage_stub_mold";
    check({
        {"a directory that looks like a project file", root + "=/u/my.prj.d/sub", "gcc -c a.c",
         cc("/u")},
        {"a file without a directory", root + "=demo.PRJ", "gcc -c a.c", cc("demo")},
        {"in the root directory", root + "=/demo.prj", "gcc -c a.c", cc("")},
        {"a slash at the end", root + "=/p/x.prj/", "gcc -c a.c", cc("/p")},
        {"a long path", root + "=" + deep + "/x.prj", "gcc -c a.c", cc(deep)},
        {"no project", "-u " + root, "gcc -c a.c", cc(""), "", "", root},
        {"no stub mode", "-u " + mode, "gcc -o app",
         "lltld cmd:\n lltld -qmr_current_prj_path /p -projectname app -qmr_coverage_stub_mold  ",
         "", "", mode},
        {"neither, unchanged", "-u " + mode + " -u " + root, "gcc -E a.c"},
        {"the last word size", on, "gcc -m64 -m32 -o a-b", ld("a45b_m32"), "",
         "[gcc][-m64][-m32][-o][a-b]{m32m64=1}"},
        {"a word size as a value", on, "gcc -L -m32 -o app", ld("app"), "",
         "[gcc][-L][-m32][-o][app]{m32m64=2}"},
        {"word sizes off", "TUSK_ENABLE_m32m64=0", "gcc -m32 -o app", ld("app")},
        {"a long name is cut", "TUSK_ENABLE_m32m64=", "gcc -o " + x + "--", ld(x + "45")},
        {"a name is cut, then made longer", "", "gcc -o " + deletes, ld(codes)},
        {"driver of a kernel", "lltwrapper_cfg=2", "gcc -o app", ld("app", "lltld_kernel")},
        {"driver of a hot patch", "lltwrapper_cfg=3x", "gcc -o app", ld("app", "hotpatch")},
        {"driver without a system", "lltwrapper_cfg=4", "gcc -o app", ld("app", "lltld_noos")},
        {"driver without a system again", "lltwrapper_cfg=6", "gcc -o app",
         ld("app", "lltld_noos")},
        {"driver 7", "lltwrapper_cfg=7", "gcc -o app", ld("app", "lltld_omu")},
        {"driver of a hot patch at fixed addresses", "lltwrapper_cfg=8", "gcc -o app",
         ld("app", "link_fixaddr_hotpatch")},
    });
}

TEST_F(Forwarding, KernelListsNameTheirTargets)
{
    ASSERT_EQ(std::system("mkdir -p drv/net"), 0);
    const std::string list = "lltwrapper_cfg=1 LLT_TargetName=", path = dir + "/drv/net/n";
    const auto hit = [&](const std::string& key, const std::string& kind) {
        return info("itor_temp->first", key) + info("linkage-target-meet-" + kind, path);
    };
    const auto named = [](const std::string& kind, const std::string& name) {
        return "TUSK-NAME_BY_USER_" + kind + ":: " + name + "\n" + ld(name, "lltld_kernel");
    };
    const std::string target = info("linkage-target", path), net = target + hit("/net", "krnl");
    const std::string ko = hit("drv", "ko"), no = dir + "/no", link = "gcc -o drv/net/n";
    check({
        {"the last pair of a directory", list + "drv,b:/net,a:/net,c", link,
         net + named("KRNL", "c")},
        {"pairs with half missing", list + ",x:/net,:drv,y:", link,
         target + hit("drv", "krnl") + named("KRNL", "y")},
        {"an empty item at the start ends the list", list + ":/net,x", link,
         target + info("linkage-target-omitted", path)},
        {"in both lists the image wins", list + "/net,x LLT_TargetName_KO=drv,k", link,
         net + ko + named("KRNL", "x")},
        {"a module, with a word size", list + "/net LLT_TargetName_KO=drv,k TUSK_ENABLE_m32m64=1",
         link, target + ko + named("KO", "k"), "", "[gcc][-o][drv/net/n]{inner=1}"},
        {"a missing directory", list + "/net,x", "gcc -o no/net/n",
         info("linkage-target", no) + info("linkage-target-omitted", no)},
        {"an image of a step between", list, "gcc -o .tmp_vmlinux1",
         ld("tmp_vmlinux1", "lltld_kernel")},
        {"no target in an empty list", list, "gcc -o app"},
    });
    // The final kernel image gets the stub; nothing is flushed, so the tool's line comes first.
    const std::string image =
        "gcc -o vmlinux /p/tmp_vmlinux1/codemeasure/obj/__code_measure_stub_lib_tmp_vmlinux1.o";
    run(list, "gcc -o vmlinux");
    EXPECT_EQ(out, "gcc ran\nspecial_cmd:: " + image + "\n");
    EXPECT_EQ(calls, in_brackets(image + " ") + "\n");
}

} // namespace
