/* The public functions, all in one object: when the linker takes one of them from the static
 * library it takes all, so that a process never mixes two copies of the runtime within a module. */
#include "contract/dump_format.h"
#include "contract/names.h"
#include "contract/stub_modes.h"
#include "copies.h"
#include "dump.h"
#include "ends.h"
#include "lltcov_rt.h"
#include "policy.h"
#include "process.h"
#include "registry.h"
#include "report.h"
#include "secure.h"

#include <errno.h>
#include <limits.h>
#include <signal.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

/* Any port will do: nothing is bound. */
unsigned short g_TUSKSockBindPort __attribute__((weak)) = 60000;

static int target_state;
static char* next_root; /* absolute, or empty for one that cannot be; null: the default */

/* --- modules */

/* The first `length` bytes of a path, made absolute; empty when that does not fit, and where the
 * current directory is one that somebody without these rights has chosen. */
static void make_absolute(char* out, const char* text, size_t length)
{
    size_t used = 0;
    out[0] = '\0';
    if (text[0] != '/') {
        if (is_secure() || getcwd(out, PATH_MAX - 1) == NULL) {
            out[0] = '\0';
            return;
        }
        used = strlen(out);
        out[used++] = '/';
    }
    if (used + length >= PATH_MAX) {
        out[0] = '\0';
        return;
    }
    memcpy(out + used, text, length);
    out[used + length] = '\0';
}

/* The length of a path without its last component. */
static size_t parent_length(const char* path, size_t length)
{
    while (length > 0 && path[length - 1] != '/') {
        --length;
    }
    while (length > 1 && path[length - 1] == '/') {
        --length;
    }
    return length;
}

/* Where the next module's dumps go. */
static void choose_root(char* out, const char* area)
{
    static const char DEFAULT_NAME[] = "/" DUMP_DIRECTORY;
    /* Not in a set-user-id program: its caller must not choose where it writes. */
    const char* from_environment = secure_getenv("LLTCOV_ROOT");
    if (from_environment != NULL && from_environment[0] != '\0') {
        make_absolute(out, from_environment, strlen(from_environment));
        return;
    }
    if (next_root != NULL) {
        memcpy(out, next_root, strlen(next_root) + 1);
        return;
    }
    make_absolute(out, area, parent_length(area, parent_length(area, strlen(area))));
    const size_t used = strlen(out);
    if (used > 0 && used + sizeof DEFAULT_NAME <= PATH_MAX) {
        memcpy(out + used, DEFAULT_NAME, sizeof DEFAULT_NAME);
    }
}

void* QMR_CreateCoverageListExt(const char* pModName, const char* covdbpath, unsigned long iCount,
                                int iClass)
{
    (void)iCount;
    char root[PATH_MAX];
    sigset_t mask;
    const int saved = errno;
    choose_root(root, covdbpath);
    const char* test = secure_getenv("LLTCOV_TEST");
    if (test != NULL && test[0] == '\0') {
        test = NULL;
    }
    process_set_up();
    registry_lock(&mask);
    struct module* module = registry_add_module(pModName, covdbpath, root, test, iClass - 1);
    registry_unlock(&mask);
    if (module == NULL) {
        report_lost(pModName, root, ENOMEM);
    }
    errno = saved;
    return module;
}

/* How many bytes at the end of an array join by "or": N of "SYMBOL.EXTENSION:N", or 0. */
static unsigned long long or_bytes_of(const char* name, unsigned long long size)
{
    const char* const extension = strrchr(name, '.');
    const char* digit = extension != NULL ? strrchr(extension, DUMP_OR_MARK) : NULL;
    unsigned long long bytes = 0;
    if (digit == NULL) {
        return 0;
    }
    while (*++digit >= '0' && *digit <= '9' && bytes <= size) {
        bytes = bytes * 10 + (unsigned int)(*digit - '0');
    }
    return *digit == '\0' && bytes <= size && bytes % sizeof(uint64_t) == 0 ? bytes : 0;
}

int QMR_AddCoverageBuf(void* pMod, unsigned int iFileId, char* pFileName, unsigned int* pCovBuf,
                       unsigned int iBufSize, unsigned int iInstSize)
{
    struct module* module = pMod;
    if (module == NULL || pCovBuf == NULL || module->is_complete) {
        return 0;
    }
    /* A few modes state four bytes per point although their arrays are smaller, so the layout
     * follows the mode and not the size that is stated. */
    const unsigned long long size = size_of_array(module->mode, iInstSize);
    if (size > iBufSize || size % sizeof(uint64_t) != 0) {
        return 0;
    }
    const struct buffer buffer = {
        .name = pFileName,
        .data = (volatile uint64_t*)(void*)pCovBuf,
        .words = (size_t)size / sizeof(uint64_t),
        .or_words = (size_t)or_bytes_of(pFileName, size) / sizeof(uint64_t),
        .index = iFileId,
    };
    if (registry_add_buffer(module, &buffer)) {
        return 1;
    }
    report_lost(module->name, module->root, ENOMEM);
    return 0;
}

/* Sets the text, to be freed, to the string member of a flat JSON object; null when it has none. 1;
 * 0 when there is no memory. */
static int get_member(const char* object, const char* member, char** text)
{
    const char* at = strstr(object, member);
    *text = at != NULL ? malloc(strlen(at) + 1) : NULL;
    if (*text == NULL) {
        return at == NULL;
    }
    char* end = *text;
    for (at += strlen(member); *at != '\0' && *at != '"'; ++at) {
        if (*at == '\\' && at[1] != '\0') {
            ++at;
        }
        *end++ = *at;
    }
    *end = '\0';
    return 1;
}

/* Without build id nobody could tell what the counts mean. */
static void complete(struct module* module, const char* description)
{
    if (get_member(description, "\"projectname\":\"", &module->project) &&
        get_member(description, "\"buid\":\"", &module->buid)) {
        module->is_complete = 1;
    } else {
        report_lost(module->name, module->root, ENOMEM);
        registry_remove_module(module);
    }
}

int QMRInit(int iType, char* pProjName)
{
    (void)iType;
    sigset_t mask;
    registry_lock(&mask);
    for (struct module *module = registry_modules, *next; module != NULL; module = next) {
        next = module->next;
        if (!module->is_complete) {
            complete(module, pProjName);
        }
    }
    registry_unlock(&mask);
    ends_watch_signals();
    return 1;
}

static int same_name(const char* a, const char* b)
{
    while (*a != '\0' && (*a == '-' ? '_' : *a) == (*b == '-' ? '_' : *b)) {
        ++a;
        ++b;
    }
    return *a == *b;
}

void QMR_DumpModuleCovdata(char* modulename)
{
    sigset_t mask;
    registry_lock(&mask);
    for (struct module *module = registry_modules, *next; module != NULL; module = next) {
        next = module->next;
        if (same_name(module->name, modulename)) {
            dump_module(module);
            if (!process_is_exiting()) {
                registry_remove_module(module);
            }
        }
    }
    registry_unlock(&mask);
}

int lltcov_dump(void)
{
    return copies_dump();
}

int lltcov_reset(void)
{
    copies_reset();
    return 1;
}

/* --- settings */

void TUSK_CovSetlltcovRootpath(const char* rootpath)
{
    char root[PATH_MAX];
    process_set_up();
    make_absolute(root, rootpath, strlen(rootpath));
    free(next_root);
    next_root = strdup(root);
    if (next_root == NULL) {
        report_failure("lltcovRootpath has no effect: no memory is left", ENOMEM);
    }
}

void TUSK_CovSetTimerPolicy(int time_interval)
{
    process_set_up();
    policy_start_timer(time_interval);
}

void TUSK_CovSetSignalPolicy(int signal_no)
{
    process_set_up();
    policy_watch_signal(signal_no);
}

void TUSK_CovSetSupportVbsFlag(unsigned int uiFlag)
{
    (void)uiFlag;
}

void TUSK_CovSetCompilePolicy(int overlappedCompile)
{
    (void)overlappedCompile;
}

__attribute__((weak)) void TUSK_UserAgentConfig(void) {}

int ZKT_ServerInit(unsigned int iHostPort)
{
    (void)iHostPort;
    return 1;
}

int QMRGetTargetState(void)
{
    return target_state;
}

void QMRSetTargetState(int state)
{
    target_state = state;
}
