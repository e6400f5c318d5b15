/* What a dump file holds: FORMATS.md describes its lines. */
#include "dump.h"

#include "dump_file.h"
#include "out.h"
#include "report.h"

#include <errno.h>
#include <stdint.h>
#include <stdio.h>
#include <unistd.h>

/* Static, since a handler may run on a small stack; the lock guards it. */
static char buffered[1 << 16];

static unsigned long long count_of(const struct buffer* buffer, enum width width, unsigned int i)
{
    if (width == WIDTH_WORD) {
        return ((const volatile uint32_t*)buffer->data)[i];
    }
    if (width == WIDTH_BYTE) {
        return ((const volatile unsigned char*)buffer->data)[i];
    }
    return ((const volatile uint32_t*)buffer->data)[i / 32] >> (i % 32) & 1U;
}

static unsigned long long sum_of(const struct module* module)
{
    const enum width width = width_of_mode(module->mode);
    unsigned long long sum = 0;
    for (const struct buffer* buffer = module->first; buffer != NULL; buffer = buffer->next) {
        for (unsigned int i = 0; i < buffer->points; ++i) {
            sum += count_of(buffer, width, i);
        }
    }
    return sum;
}

/* Runs of equal counts as COUNT*TIMES. */
static void write_counts(struct out* out, const struct buffer* buffer, enum width width)
{
    const char* separator = "";
    unsigned long long next = buffer->points > 0 ? count_of(buffer, width, 0) : 0;
    for (unsigned int i = 0; i < buffer->points;) {
        const unsigned long long count = next;
        const unsigned int start = i;
        /* Each counter is read once: it may go on counting meanwhile. */
        while (++i < buffer->points && (next = count_of(buffer, width, i)) == count) {
        }
        out_text(out, separator);
        out_number(out, count);
        if (i - start > 1) {
            out_text(out, "*");
            out_number(out, i - start);
        }
        separator = " ";
    }
    out_text(out, "\n");
}

static void write_line(struct out* out, const char* key, const char* value)
{
    out_text(out, key);
    out_name(out, value != NULL ? value : "");
    out_text(out, "\n");
}

static void write_header(struct out* out, const struct module* module)
{
    out_text(out, "lltcov 1\n");
    write_line(out, "module ", module->name);
    write_line(out, "project ", module->project);
    write_line(out, "buid ", module->buid);
    out_text(out, "pid ");
    out_number(out, (unsigned long long)getpid());
    out_text(out, "\nmode ");
    out_number(out, (unsigned long long)module->mode);
    write_line(out, "\narea ", module->area);
}

static int write_content(int fd, const struct module* module)
{
    struct out out = {buffered, sizeof buffered, 0, fd, 0};
    const enum width width = width_of_mode(module->mode);
    write_header(&out, module);
    for (const struct buffer* buffer = module->first; buffer != NULL; buffer = buffer->next) {
        out_text(&out, "file ");
        out_number(&out, buffer->index);
        out_text(&out, " ");
        out_name(&out, buffer->name);
        out_text(&out, " ");
        out_number(&out, buffer->points);
        out_text(&out, " ");
        out_number(&out, width);
        out_text(&out, "\n");
        write_counts(&out, buffer, width);
    }
    out_text(&out, "end\n");
    out_flush(&out);
    return !out.failed;
}

/* Writes and closes the file; 1, or 0 with errno set. */
static int write_file(int fd, const struct module* module)
{
    const int is_written = write_content(fd, module);
    const int error = errno;
    const int is_closed = close(fd) == 0;
    if (!is_written) {
        errno = error;
    }
    return is_written && is_closed;
}

int dump_module(struct module* module)
{
    const unsigned long long sum = sum_of(module);
    if (sum == module->dumped_sum) {
        return 1;
    }
    const int fd = dump_file_open(module);
    if (fd >= 0 && write_file(fd, module) && dump_file_publish(module)) {
        module->dumped_sum = sum;
        return 1;
    }
    report_lost(module->name, module->root, errno);
    if (fd >= 0) {
        dump_file_discard();
    }
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
