// The drivers' command line, as a shell leaves it of what the wrapper forwards.
#include "toolset/common/driver_call.h"

#include <gtest/gtest.h>
#include <iterator>
#include <sstream>

const char* const program_name = "driver";

TEST(DriverCall, ValuesThatTheShellDroppedAreMissing)
{
    const struct {
        std::string options;
        const char *project, *name;
        int mode;
    } rows[] = {
        {"-qmr_current_prj_path /p -projectname a -qmr_coverage_stub_mold 2 ", "/p", "a", 2},
        {"-qmr_current_prj_path -projectname L -qmr_coverage_stub_mold 9 ", "", "L", 9},
        // What is not set is 0 for the archive steps too: counters and arrays have to fit.
        {"-qmr_current_prj_path /p -projectname -qmr_coverage_stub_mold ", "/p", "", 0},
        {"-qmr_coverage_stub_mold -1 ", "", "", -1},
        {"", "", "", 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.options);
        std::istringstream text(row.options + "gcc -o a -projectname a.o");
        const DriverCall call = read_driver_call({std::istream_iterator<std::string>(text), {}});
        EXPECT_EQ(call.project, row.project);
        EXPECT_EQ(call.name, row.name);
        EXPECT_EQ(call.stub_mode, row.mode);
        EXPECT_EQ(call.command, (Words{"gcc", "-o", "a", "-projectname", "a.o"}));
    }
    for (const Words& none : std::vector<Words>{{}, {"-qmr_current_prj_path"}, {"--help"}}) {
        testing::internal::CaptureStderr();
        EXPECT_TRUE(read_driver_call(none).command.empty());
        EXPECT_EQ(testing::internal::GetCapturedStderr().substr(0, 20), "driver: usage: drive");
    }
}

TEST(HashName, DependsOnWhereOneTextEnds)
{
    EXPECT_EQ(hash_name({}), "cbf29ce484222325"); // the offset basis of FNV-1a, 64 bits
    EXPECT_NE(hash_name({"ab", "c"}), hash_name({"a", "bc"}));
    EXPECT_NE(hash_name({"a", "b"}), hash_name({"b", "a"}));
}
