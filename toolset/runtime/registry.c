/* Lists, and a table of addresses beside them: an array that two modules register counts once. */
#include "registry.h"

#include <pthread.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>

enum { SLOTS = 256 };

struct module* registry_modules;

static struct buffer* by_address[SLOTS];
static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;

void registry_lock(sigset_t* mask)
{
    sigset_t all;
    memset(&all, 0xff, sizeof all);
    pthread_sigmask(SIG_BLOCK, &all, mask);
    pthread_mutex_lock(&lock);
}

void registry_unlock(const sigset_t* mask)
{
    pthread_mutex_unlock(&lock);
    pthread_sigmask(SIG_SETMASK, mask, NULL);
}

static void free_module(struct module* module)
{
    free(module->project);
    free(module->buid);
    if (module->image.mapping != NULL) {
        munmap(module->image.mapping, module->image.size);
    }
    free(module);
}

struct module* registry_add_module(const char* name, const char* area, const char* root,
                                   const char* test, int mode)
{
    const char* const texts[] = {name, area, root, test};
    size_t size = sizeof(struct module);
    for (int i = 0; i < 4; ++i) {
        size += texts[i] != NULL ? strlen(texts[i]) + 1 : 0;
    }
    struct module* module = calloc(1, size);
    if (module == NULL) {
        return NULL;
    }
    char** const copies[] = {&module->name, &module->area, &module->root, &module->test};
    char* room = (char*)(module + 1);
    for (int i = 0; i < 4; ++i) {
        if (texts[i] != NULL) {
            *copies[i] = room;
            room = stpcpy(room, texts[i]) + 1;
        }
    }
    module->mode = mode;
    module->last = &module->first;
    struct module** end = &registry_modules;
    while (*end != NULL) {
        end = &(*end)->next;
    }
    *end = module;
    return module;
}

static struct buffer** slot_of(const volatile void* data)
{
    return &by_address[(uintptr_t)data / 4 % SLOTS];
}

int registry_add_buffer(struct module* module, const struct buffer* buffer)
{
    struct buffer** slot = slot_of(buffer->data);
    for (const struct buffer* known = *slot; known != NULL; known = known->same_slot) {
        if (known->data == buffer->data) {
            return 1;
        }
    }
    struct buffer* added = malloc(sizeof *added);
    if (added == NULL) {
        return 0;
    }
    *added = *buffer;
    added->next = NULL;
    added->same_slot = *slot;
    *slot = added;
    /* A fork or a reset may go through the list meanwhile. */
    __atomic_store_n(module->last, added, __ATOMIC_RELEASE);
    module->last = &added->next;
    return 1;
}

static void remove_buffers(struct module* module)
{
    while (module->first != NULL) {
        struct buffer* buffer = module->first;
        struct buffer** link = slot_of(buffer->data);
        while (*link != buffer) {
            link = &(*link)->same_slot;
        }
        *link = buffer->same_slot;
        module->first = buffer->next;
        free(buffer);
    }
}

void registry_remove_module(struct module* module)
{
    struct module** link = &registry_modules;
    while (*link != module) {
        link = &(*link)->next;
    }
    *link = module->next;
    remove_buffers(module);
    free_module(module);
}

void registry_zero_counters(void)
{
    for (struct module* module = registry_modules; module != NULL; module = module->next) {
        for (struct buffer* buffer = module->first; buffer != NULL; buffer = buffer->next) {
            for (size_t i = 0; i < buffer->words; ++i) {
                buffer->data[i] = 0;
            }
        }
        module->image.has_dumped = 0;
    }
}

void registry_forget_dumps(void)
{
    for (struct module* module = registry_modules; module != NULL; module = module->next) {
        module->image.is_counted = 0;
    }
}
