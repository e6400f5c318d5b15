#include <setjmp.h>
static jmp_buf place;
static int depth(int n)
{
    if (n == 0)
        longjmp(place, 3);
    return depth(n - 1) + 1;
}
static int run(const char* program)
{
    static void* const targets[] = {&&stop, &&add, &&twice};
    int value = 0;
    goto* targets[*program - '0'];
add:
    value++;
    goto* targets[*++program - '0'];
twice:
    value *= 2;
    goto* targets[*++program - '0'];
stop:
    return value;
}
int main(void)
{
    volatile int rounds = 0;
    int from = setjmp(place);
    rounds++;
    if (from == 0)
        return depth(4);
    return from == 3 && rounds == 2 && run("1121220") == 20 && run("0") == 0 ? 0 : 1;
}
