/* Symbols may be hidden, but the data of an image cannot: each copy leaves a mark among those that
 * the loader makes read-only when it has put the addresses in. */
#include "copies.h"

#include "dump.h"
#include "registry.h"

#include <elf.h>
#include <link.h>
#include <signal.h>
#include <stdint.h>

/* The mark of a copy. The magic bytes stand for this layout too. */
struct mark {
    unsigned char magic[16];
    struct module** modules;
    int (*dump)(void);
    int (*reset)(void);
    const struct mark* self; /* the last address that is put in */
};

__attribute__((used, aligned(8))) static const struct mark this_copy = {
    {0xb1, 0x6c, 'l', 'l', 't', 'c', 'o', 'v', 0x9e, 0x03, 0xf7, 0x4d, 0xd8, 0x25, 0xca, 2},
    &registry_modules,
    this_copy_dump,
    this_copy_reset,
    &this_copy,
};

enum action { DUMP, RESET };

struct request {
    enum action action;
    int done; /* 0 once a copy has failed */
};

static void call(const struct mark* mark, struct request* request)
{
    const int done = request->action == DUMP ? mark->dump() : mark->reset();
    request->done = done && request->done;
}

/* Whether there is another copy's mark. The room between the objects of an image is looked at too,
 * which sanitizers guard: so neither they nor their memcmp may look on. */
__attribute__((no_sanitize("address"))) static int is_mark(const struct mark* mark)
{
    size_t same = 0;
    while (same < sizeof mark->magic && mark->magic[same] == this_copy.magic[same]) {
        ++same;
    }
    return same == sizeof mark->magic && mark->self == mark && mark != &this_copy;
}

/* Looks for marks from `at` to `end`. An image that is being loaded in this moment has no addresses
 * in its mark yet, or no modules. */
static void search(uintptr_t at, uintptr_t end, struct request* request)
{
    for (at = (at + 7) / 8 * 8; at < end && end - at >= sizeof(struct mark); at += 8) {
        const struct mark* mark = (const struct mark*)at;
        if (is_mark(mark) && *mark->modules != NULL) {
            call(mark, request);
        }
    }
}

typedef ElfW(Phdr) program_header;

static const program_header* read_only_part(const struct dl_phdr_info* info)
{
    for (int i = 0; i < info->dlpi_phnum; ++i) {
        if (info->dlpi_phdr[i].p_type == PT_GNU_RELRO) {
            return &info->dlpi_phdr[i];
        }
    }
    return NULL;
}

/* Searches what is read from the file into writable memory, and of that, where there is such a
 * part, the one that is made read-only. */
static int visit_image(struct dl_phdr_info* info, size_t size, void* request)
{
    (void)size;
    const program_header* const read_only = read_only_part(info);
    for (int i = 0; i < info->dlpi_phnum; ++i) {
        const program_header* const part = &info->dlpi_phdr[i];
        if (part->p_type != PT_LOAD || (part->p_flags & PF_W) == 0) {
            continue;
        }
        uintptr_t start = (uintptr_t)part->p_vaddr;
        uintptr_t end = start + (uintptr_t)part->p_filesz;
        if (read_only != NULL) {
            const uintptr_t first = (uintptr_t)read_only->p_vaddr;
            const uintptr_t last = first + (uintptr_t)read_only->p_memsz;
            start = start > first ? start : first;
            end = end < last ? end : last;
        }
        search((uintptr_t)info->dlpi_addr + start, (uintptr_t)info->dlpi_addr + end, request);
    }
    return 0;
}

int copies_dump(void)
{
    struct request request = {DUMP, this_copy_dump()};
    dl_iterate_phdr(visit_image, &request);
    return request.done;
}

void copies_reset(void)
{
    struct request request = {RESET, this_copy_reset()};
    dl_iterate_phdr(visit_image, &request);
}

int this_copy_dump(void)
{
    sigset_t mask;
    registry_lock(&mask);
    const int done = dump_all_modules();
    registry_unlock(&mask);
    return done;
}

int this_copy_reset(void)
{
    sigset_t mask;
    registry_lock(&mask);
    registry_zero_counters();
    registry_unlock(&mask);
    return 1;
}
