/* Symbols may be hidden, but the notes of an ELF image cannot: each copy leaves one of the owner
 * "lltcov", type 1, with the distances from the note's two words to its dump and reset functions.
 */
#include "copies.h"

#include "dump.h"

#include <link.h>
#include <stdint.h>
#include <string.h>

#define OWNER "lltcov"

__asm__(".pushsection .note.lltcov,\"a\",%note\n"
        ".balign 4\n"
        ".long 7, 8, 1\n"
        ".asciz \"" OWNER "\"\n"
        ".balign 4\n"
        ".long this_copy_dump - .\n"
        ".long this_copy_reset - .\n"
        ".popsection\n");

enum { DUMP, RESET };

struct request {
    int action;
    int done; /* 0 once a copy has failed */
};

static void call(const char* words, struct request* request)
{
    const char* word = words + 4 * request->action;
    int32_t distance;
    memcpy(&distance, word, sizeof distance);
    int (*function)(void) = (int (*)(void))((uintptr_t)word + (uintptr_t)(intptr_t)distance);
    request->done = function() && request->done;
}

static void read_notes(const char* at, size_t size, size_t alignment, struct request* request)
{
    while (size >= 12) {
        uint32_t head[3]; /* sizes of name and content, type */
        memcpy(head, at, sizeof head);
        const size_t content = 12 + ((head[0] + alignment - 1) & ~(alignment - 1));
        const size_t whole = content + ((head[1] + alignment - 1) & ~(alignment - 1));
        if (whole > size) {
            return;
        }
        if (head[0] == sizeof OWNER && head[2] == 1 && memcmp(at + 12, OWNER, sizeof OWNER) == 0) {
            call(at + content, request);
        }
        at += whole;
        size -= whole;
    }
}

static int visit_image(struct dl_phdr_info* info, size_t size, void* request)
{
    (void)size;
    for (int i = 0; i < info->dlpi_phnum; ++i) {
        const ElfW(Phdr)* part = &info->dlpi_phdr[i];
        if (part->p_type == PT_NOTE) {
            const uintptr_t address = (uintptr_t)info->dlpi_addr + (uintptr_t)part->p_vaddr;
            read_notes((const char*)address, (size_t)part->p_memsz, part->p_align == 8 ? 8 : 4,
                       request);
        }
    }
    return 0;
}

int copies_dump(void)
{
    struct request request = {DUMP, this_copy_dump()}; /* also where the notes were stripped off */
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
    registry_forget_files();
    registry_unlock(&mask);
    return 1;
}
