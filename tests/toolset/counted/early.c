#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

static int sign(int value)
{
    return value < 0 ? -1 : 1;
}

__attribute__((constructor(200))) static void begin(void)
{
    if (fork() == 0) {
        exit(sign(-3) + 1);
    }
    wait(NULL);
}

int main(void)
{
    return sign(5) - 1;
}
