/* Lists, and a table of addresses beside them: an array that two modules register counts once. */
#include "registry.h"

#include <pthread.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>

enum { SLOTS = 4096 };

struct module* registry_modules;

static struct buffer* by_address[SLOTS];
static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;

void registry_lock(sigset_t* mask)
{
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, mask);
    pthread_mutex_lock(&lock);
}

void registry_unlock(const sigset_t* mask)
{
    pthread_mutex_unlock(&lock);
    pthread_sigmask(SIG_SETMASK, mask, NULL);
}

/* A few stub modes register four bytes per probe although their arrays are smaller, so the layout
 * follows the mode and not the size that is stated. */
enum width width_of_mode(int mode)
{
    static const enum width WIDTHS[] = {
        WIDTH_BIT,  WIDTH_WORD, WIDTH_BYTE, WIDTH_WORD, WIDTH_BIT,
        WIDTH_WORD, WIDTH_BYTE, WIDTH_BIT,  WIDTH_WORD, WIDTH_BYTE,
    };
    return mode >= 0 && mode < (int)(sizeof WIDTHS / sizeof *WIDTHS) ? WIDTHS[mode] : WIDTH_WORD;
}

unsigned long long size_of_array(enum width width, unsigned int points)
{
    if (width == WIDTH_BIT) {
        return ((unsigned long long)points + 31) / 32 * 4;
    }
    return (unsigned long long)points * width;
}

static char* copy_of(const char* text)
{
    const size_t size = strlen(text) + 1;
    char* copy = malloc(size);
    return copy != NULL ? memcpy(copy, text, size) : NULL;
}

static void free_module(struct module* module)
{
    free(module->name);
    free(module->area);
    free(module->root);
    free(module->project);
    free(module->buid);
    free(module);
}

struct module* registry_add_module(const char* name, const char* area, const char* root, int mode)
{
    struct module* module = calloc(1, sizeof *module);
    if (module == NULL) {
        return NULL;
    }
    module->name = copy_of(name);
    module->area = copy_of(area);
    module->root = copy_of(root);
    module->mode = mode;
    module->last = &module->first;
    if (module->name == NULL || module->area == NULL || module->root == NULL) {
        free_module(module);
        return NULL;
    }
    struct module** end = &registry_modules;
    while (*end != NULL) {
        end = &(*end)->next;
    }
    *end = module;
    return module;
}

static struct buffer** slot_of(const void* data)
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
    char* name = copy_of(buffer->name);
    if (added == NULL || name == NULL) {
        free(added);
        free(name);
        return 0;
    }
    *added = *buffer;
    added->name = name;
    added->next = NULL;
    added->same_slot = *slot;
    *slot = added;
    *module->last = added;
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
        free(buffer->name);
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
        const enum width width = width_of_mode(module->mode);
        for (struct buffer* buffer = module->first; buffer != NULL; buffer = buffer->next) {
            memset(buffer->data, 0, (size_t)size_of_array(width, buffer->points));
        }
        module->dumped_sum = 0;
    }
}

void registry_forget_files(void)
{
    for (struct module* module = registry_modules; module != NULL; module = module->next) {
        module->file[0] = '\0';
    }
}
