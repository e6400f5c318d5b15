/* As an instrumenting compiler driver leaves a source: each branch counts in the source's own
   array, which the library's registration stub defines. */
extern unsigned int g_QMRCovData_area[];

int area(int width, int height)
{
    g_QMRCovData_area[0]++;
    if (width < 0 || height < 0) {
        g_QMRCovData_area[1]++;
        return 0;
    }
    g_QMRCovData_area[2]++;
    return width * height;
}
