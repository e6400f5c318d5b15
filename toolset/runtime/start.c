/* Registers the module of a link when it is loaded, and dumps it when it is unloaded. What a static
 * library's stub does by calls, a link tells by a table. */
#include "contract/module_table.h"
#include "lltcov_rt.h"

#include <errno.h>
#include <stddef.h>

/* Each module has its own two, as it has its own copy of the runtime. "--whole-archive" brings this
 * file into modules that have no table, only libraries with stubs: the empty one here says so. Not
 * const, as clang takes what a constant holds for known although a link may replace it. */
#pragma GCC visibility push(hidden)
extern struct lltcov_module lltcov_module;
struct lltcov_module lltcov_module __attribute__((weak)) = {0};
/* Before constructors of the program that may fork or exit: the compiler leaves 101 and above. */
void lltcov_start(void) __attribute__((constructor(101)));
#pragma GCC visibility pop

static void register_sources(void* list)
{
    for (uint32_t i = 0; i < lltcov_module.number; ++i) {
        const struct lltcov_source* const source = &lltcov_module.sources[i];
        QMR_AddCoverageBuf(list, i, (char*)source->name, source->array, source->bytes,
                           source->points);
    }
}

void lltcov_start(void)
{
    const struct lltcov_module* const module = &lltcov_module;
    if (module->name == NULL) {
        return;
    }
    if (module->has_timer != 0) {
        TUSK_CovSetTimerPolicy((int)module->timer_interval);
    }
    if (module->has_signal != 0) {
        TUSK_CovSetSignalPolicy((int)module->signal_number);
    }
    if (module->root != NULL) {
        TUSK_CovSetlltcovRootpath(module->root);
    }
    void* const list = QMR_CreateCoverageListExt(module->name, module->area, module->number,
                                                 (int)module->mode + 1);
    if (list != NULL) {
        register_sources(list);
        QMRInit(0, (char*)module->build);
        if (QMRGetTargetState() == 0) {
            if (module->asks_program != 0) {
                TUSK_UserAgentConfig();
            }
            QMRSetTargetState(1);
        }
    }
    errno = 0;
}

static void __attribute__((destructor)) end(void)
{
    if (lltcov_module.name != NULL) {
        QMR_DumpModuleCovdata((char*)lltcov_module.name);
        errno = 0;
    }
}
