#include <pthread.h>
#include <stddef.h>
static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
static long total;
static void add(long amount)
{
    pthread_mutex_lock(&lock);
    total += amount;
    pthread_mutex_unlock(&lock);
}
static void* work(void* argument)
{
    for (int i = 0; i < 200000; i++)
        if (i % 2)
            add(*(int*)argument);
    return NULL;
}
int main(void)
{
    pthread_t threads[4];
    int one = 1;
    for (int i = 0; i < 4; i++)
        pthread_create(&threads[i], NULL, work, &one);
    for (int i = 0; i < 4; i++)
        pthread_join(threads[i], NULL);
    return total == 400000 ? 0 : 1;
}
