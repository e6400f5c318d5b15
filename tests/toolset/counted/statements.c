#include <stdlib.h>
#define COLOURS(X) X(red, 3) X(green, 0) X(blue, 5)
#define CASE(name, times)                                                                          \
    case name:                                                                                     \
        return times;
#define NAME(name, times) name,
enum colour { COLOURS(NAME) last };
static int times_of(enum colour colour)
{
    switch (colour) {
        COLOURS(CASE)
    default:
        return -1;
    }
}
#define FUNCTION(name)                                                                             \
    static int twice_##name(int x)                                                                 \
    {                                                                                              \
        return x > 100 ? 0 : 2 * x;                                                                \
    }
FUNCTION(called)
FUNCTION(often)
FUNCTION(never)
static int digits(unsigned value)
{
    int count = 0;
    for (;;) {
        count++;
        value /= 10;
        if (!value)
            break;
    }
    return count;
}
static int kind(int c)
{
    int weight = 0;
    switch (c) {
    case 'a':
    case 'b':
        weight = 1;
        /* fall through */
    case 'c':
        weight += 2;
        break;
    case 'd':
        return 9;
    default:
        weight = 7;
    }
    return weight;
}
static long spin(const int* table, int size)
{
    long sum = 0;
    for (int round = 0; round < 1000; round++)
        for (int i = 0; i < size; i++)
            sum += table[i] > 2 && table[i] < 7 ? table[i] : 1;
    do
        sum--;
    while (sum % 16);
    return sum;
}
int main(int argc, char** argv)
{
    int table[8] = {0, 1, 2, 3, 4, 5, 6, argc};
    int sum = argv == NULL;
    for (const char* c = "abcdzz"; *c; c++)
        sum += kind(*c);
    for (enum colour each = red; each < last; each++)
        sum += times_of(each);
    for (int i = 0; i < 200; i++)
        sum += twice_often(i);
    if (argc > 5)
        sum += twice_never(argc);
    sum += twice_called(argc) + digits(12345) + digits(7);
    return sum == 10147 && spin(table, 8) == 21984 ? 0 : sum % 100 + 1;
}
