/* Instrumented like area.c. */
extern unsigned int g_QMRCovData_volume[];

int area(int width, int height);

int volume(int width, int height, int depth)
{
    g_QMRCovData_volume[0]++;
    return area(width, height) * depth;
}

int surface(int width, int height, int depth)
{
    g_QMRCovData_volume[1]++;
    return 2 * (area(width, height) + area(height, depth) + area(width, depth));
}
