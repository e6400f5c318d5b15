#include "all.h"
int other(int x);
static int helper(int x)
{
    return x > 3 ? x : 3;
}
int unused(int x)
{
    return helper(x);
}
int main(void)
{
    int sum = 0;
    for (int i = 0; i < 10; i++)
        sum += helper(i) + other(i);
    return sum == 51 + 25 && length_of("ab") == 2 ? 0 : 1;
}
