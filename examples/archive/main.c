#include <stdio.h>

int volume(int width, int height, int depth);

int main(void)
{
    printf("volume %d\n", volume(2, 3, 4));
    return 0;
}
