// A decision becomes the state of the process, and in archive mode the arguments are looked at.
// Planning makes and runs nothing but what the caller enters the work area with; what it prints can
// be held (`HeldMessages`).
#include "lltwrapper/step_plan.h"

#include "commonfunc/Caddis_func.h"
#include "commonfunc/message.h"
#include "commonfunc/text.h"
#include "lltld/module_compile.h"
#include "lltld/object_scan.h"
#include "lltld/program_objects.h"
#include "lltld/work_area.h"
#include "lltwrapper/wrapper_state.h"

#include <new>

namespace
{

void print_match(const TargetMatch& match, const char* kind, const std::string& path)
{
    if (!match.name.empty()) {
        print_info("\nitor_temp->first:: %s\n", match.key.c_str());
        print_info("\nlinkage-target-meet-%s:: %s\n", kind, path.c_str());
    }
}

/// Names a target as the lists do, and tells which entries matched.
void apply_lists(const Decision& decision)
{
    const std::string& path = decision.output_path;
    print_info("\nlinkage-target:: %s\n", path.c_str());
    print_match(decision.builtin, "krnl", path);
    print_match(decision.module, "ko", path);
    strLinkNameUser = decision.builtin.name;
    strLinkNameUserKo = decision.module.name;
    if (decision.reason == Reason::no_kernel_target) {
        print_info("\nlinkage-target-omitted:: %s\n", path.c_str());
    }
}

void set_mode_flag(Mode mode)
{
    switch (mode) {
    case Mode::unchanged:
        lltcc_flag = lltld_flag = ar_flag = 0;
        ori_flag = 1;
        break;
    case Mode::compile:
        lltcc_flag = 1;
        break;
    case Mode::link:
        lltld_flag = 1;
        break;
    case Mode::kernel_image:
        lltld_flag = 0;
        special_flag = 1;
        break;
    case Mode::archive:
        ar_flag = 1;
        break;
    }
}

void apply_decision(const Decision& decision)
{
    if (!decision.archive.empty()) {
        arname = decision.archive;
        copy_bounded(g_lxprj->szObjFile, decision.archive_path);
    }
    strLinkName = decision.link_name;
    iToken_wrapper = decision.token;
    if (decision.reason == Reason::kernel_target || decision.reason == Reason::no_kernel_target) {
        apply_lists(decision);
    }
    set_mode_flag(decision.mode);
}

} // namespace

Plan plan_step(const std::vector<std::string>& arguments, EnterWorkArea enter)
{
    Plan plan;
    plan.decision = decide(arguments);
    plan.mode = plan.decision.mode;
    apply_decision(plan.decision);
    if (plan.mode == Mode::archive) {
        plan.archive = plan_archive(arguments, enter);
        if (plan.archive.is_named && plan.archive.members.empty()) {
            plan.mode = Mode::unchanged;
            set_mode_flag(plan.mode);
        }
    }
    return plan;
}

void checkstate(int argc, char** argv)
{
    try {
        const Plan plan = plan_step({argv + 1, argv + argc}, enter_work_area);
        for (const ScannedObject& member : plan.archive.members) {
            vtor_obj.push_back(member.path);
        }
        if (!plan.archive.members.empty()) {
            register_scanned_objects(plan.archive.members);
        }
    } catch (const std::bad_alloc&) {
        if (ar_flag == 0) {
            throw;
        }
        // Kept: the archive sequence then runs on what there is.
        say("[lltwrapper]:Allocate memory failed!\n");
        warn("'%s' gets no coverage: out of memory while its members were read; run the step again",
             arname.c_str());
    }
}
