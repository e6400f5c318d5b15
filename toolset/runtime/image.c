/* The mapping holds, in this order: the room for a header, the header so that it ends at a multiple
 * of 8, the words, and two arrays of counters. */
#include "image.h"

#include "contract/dump_format.h"
#include "out.h"
#include "registry.h"

#include <errno.h>
#include <stdint.h>
#include <string.h>
#include <sys/mman.h>

/* --- the header */

static unsigned long long bytes_of_counters(const struct module* module)
{
    unsigned long long bytes = 0;
    for (const struct buffer* buffer = module->first; buffer != NULL; buffer = buffer->next) {
        bytes += buffer->words * sizeof(uint64_t);
    }
    return bytes;
}

static const char* byte_order(void)
{
    const uint16_t one = 1;
    return *(const unsigned char*)&one == 1 ? DUMP_LITTLE : DUMP_BIG;
}

static void add_line(struct out* out, const char* key, const char* value)
{
    out_text(out, key);
    out_name(out, value != NULL ? value : "");
    out_text(out, "\n");
}

static void add_header(struct out* out, const struct module* module)
{
    out_text(out, DUMP_FORMAT "\n");
    add_line(out, DUMP_MODULE " ", module->name);
    add_line(out, DUMP_PROJECT " ", module->project);
    add_line(out, DUMP_BUID " ", module->buid);
    out_text(out, DUMP_MODE " ");
    out_number(out, (unsigned long long)module->mode);
    add_line(out, "\n" DUMP_AREA " ", module->area);
    if (module->test != NULL) {
        add_line(out, DUMP_TEST " ", module->test);
    }
    add_line(out, DUMP_ORDER " ", byte_order());
    for (const struct buffer* buffer = module->first; buffer != NULL; buffer = buffer->next) {
        out_text(out, DUMP_FILE " ");
        out_number(out, buffer->index);
        out_text(out, " ");
        out_name(out, buffer->name);
        out_text(out, " ");
        out_number(out, buffer->words * sizeof(uint64_t));
        out_text(out, "\n");
    }
    out_text(out, DUMP_COUNTS " ");
    out_number(out, bytes_of_counters(module) + sizeof(uint64_t));
    out_text(out, "\n");
}

/* FNV-1a. */
static uint64_t hash_of(const char* text, size_t size)
{
    uint64_t hash = 0xcbf29ce484222325U;
    for (size_t i = 0; i < size; ++i) {
        hash = (hash ^ (unsigned char)text[i]) * 0x100000001b3U;
    }
    return hash;
}

/* --- the mapping */

static int make_image(struct module* module)
{
    struct image* image = &module->image;
    struct out out = {NULL, 0, 0};
    add_header(&out, module);
    const unsigned long long bytes = bytes_of_counters(module);
    if (bytes > DUMP_MAX_BYTES - DUMP_WORD || out.used > DUMP_MAX_HEADER) {
        errno = EFBIG;
        return 0;
    }
    const size_t text = (out.used + 7) / 8 * 8;
    const unsigned long long size = 2ULL * text + sizeof(uint64_t) + 3 * bytes;
    if (size > SIZE_MAX) {
        errno = ENOMEM;
        return 0;
    }
    char* const at =
        mmap(NULL, (size_t)size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (at == MAP_FAILED) {
        return 0;
    }
    image->mapping = at;
    image->size = (size_t)size;
    image->file_header = at;
    image->header_size = out.used;
    image->header = at + 2 * text - out.used;
    image->words = (uint64_t*)(void*)(at + 2 * text);
    image->word_count = (size_t)bytes / sizeof(uint64_t) + 1;
    image->current = image->words + image->word_count;
    image->dumped = image->current + image->word_count - 1;
    out = (struct out){image->header, image->header_size, 0};
    add_header(&out, module);
    image->hash = hash_of(image->header, image->header_size);
    return 1;
}

/* --- the counts */

int image_has_news(const struct module* module)
{
    const uint64_t* dumped = module->image.has_dumped ? module->image.dumped : NULL;
    for (const struct buffer* buffer = module->first; buffer != NULL; buffer = buffer->next) {
        for (size_t i = 0; i < buffer->words; ++i) {
            if (buffer->data[i] != (dumped != NULL ? *dumped++ : 0)) {
                return 1;
            }
        }
    }
    return 0;
}

int image_update(struct module* module)
{
    if (module->image.mapping == NULL && !make_image(module)) {
        return 0;
    }
    /* Each counter is read once: it may go on counting meanwhile. */
    uint64_t* current = module->image.current;
    for (const struct buffer* buffer = module->first; buffer != NULL; buffer = buffer->next) {
        for (size_t i = 0; i < buffer->words; ++i) {
            *current++ = buffer->data[i];
        }
    }
    return 1;
}

void image_join(struct module* module)
{
    const struct image* image = &module->image;
    const uint64_t* current = image->current;
    const uint64_t* dumped = image->has_dumped ? image->dumped : NULL;
    uint64_t* word = image->words;
    *word++ += !image->is_counted;
    for (const struct buffer* buffer = module->first; buffer != NULL; buffer = buffer->next) {
        for (size_t i = 0; i < buffer->words; ++i, ++word, ++current) {
            const uint64_t before = dumped != NULL ? *dumped++ : 0;
            *word = i < buffer->words - buffer->or_words ? *word + (*current - before)
                                                         : *word | *current;
        }
    }
}

void image_commit(struct module* module)
{
    struct image* image = &module->image;
    uint64_t* const free_room = image->dumped;
    image->dumped = image->current;
    image->current = free_room;
    image->has_dumped = 1;
    image->is_counted = 1;
}
