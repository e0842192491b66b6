// The program for which the tests' headers are compiled; it is never run.
int main()
{
    return 0;
}
