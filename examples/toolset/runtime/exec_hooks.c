/* A successful exec ends the program without its destructors. The link driver has calls of the exec
 * family go to the functions here (option --wrap of the linker: __wrap_X is called for X, and
 * __real_X is X itself); each dumps and goes on to the real one with the arguments as they are.
 * C cannot hand on a variable number of arguments, so this is assembly: the registers that hold
 * arguments are kept, what is on the stack stays there. They are weak: a program that wraps such a
 * function itself keeps its own, and one that defines it gets its own called. */

#if defined(__x86_64__)
/* Seven registers: the stack is then aligned to 16 bytes for the call. */
#define DUMP_AND_GO_ON(real)                                                                       \
    "endbr64\n"                                                                                    \
    "push %rdi\n push %rsi\n push %rdx\n push %rcx\n push %r8\n push %r9\n push %rax\n"            \
    "call lltcov_dump@PLT\n"                                                                       \
    "pop %rax\n pop %r9\n pop %r8\n pop %rcx\n pop %rdx\n pop %rsi\n pop %rdi\n"                   \
    "jmp " real "@PLT\n"
#elif defined(__aarch64__)
/* "hint #34" is "bti c", which older assemblers do not know. */
#define DUMP_AND_GO_ON(real)                                                                       \
    "hint #34\n"                                                                                   \
    "stp x29, x30, [sp, #-80]!\n mov x29, sp\n"                                                    \
    "stp x0, x1, [sp, #16]\n stp x2, x3, [sp, #32]\n"                                              \
    "stp x4, x5, [sp, #48]\n stp x6, x7, [sp, #64]\n"                                              \
    "bl lltcov_dump\n"                                                                             \
    "ldp x0, x1, [sp, #16]\n ldp x2, x3, [sp, #32]\n"                                              \
    "ldp x4, x5, [sp, #48]\n ldp x6, x7, [sp, #64]\n"                                              \
    "ldp x29, x30, [sp], #80\n"                                                                    \
    "b " real "\n"
#else
#error "only x86-64 and AArch64 are known"
#endif

#define HOOK(name)                                                                                 \
    __asm__(".text\n"                                                                              \
            ".weak __wrap_" name "\n"                                                              \
            ".hidden __wrap_" name "\n"                                                            \
            ".type __wrap_" name ", %function\n"                                                   \
            "__wrap_" name ":\n" DUMP_AND_GO_ON("__real_" name))

HOOK("execl");
HOOK("execlp");
HOOK("execle");
HOOK("execv");
HOOK("execvp");
HOOK("execve");
HOOK("execvpe");
HOOK("fexecve");
