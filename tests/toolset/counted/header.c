int main(void)
{
    return length_of("four") == 4 && length_of(NULL) == -1 ? 0 : 1;
}
