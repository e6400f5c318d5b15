/* A dump that cannot be written is reported, and its counts stay: the next dump tries again. */
#include "dump.h"

#include "dump_file.h"
#include "image.h"
#include "registry.h"
#include "report.h"

#include <errno.h>
#include <stddef.h>

int dump_module(struct module* module)
{
    /* One that is still being registered is dumped later: its header is not known. */
    if (!module->is_complete || !image_has_news(module)) {
        return 1;
    }
    if (image_update(module) && dump_file_write(module)) {
        image_commit(module);
        return 1;
    }
    report_lost(module->name, module->root, errno);
    return 0;
}

int dump_all_modules(void)
{
    const int saved = errno;
    int done = 1;
    for (struct module* module = registry_modules; module != NULL; module = module->next) {
        done = dump_module(module) && done;
    }
    errno = saved;
    return done;
}
