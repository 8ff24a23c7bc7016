/* A firmware without debug information. */
int main(void)
{
    return 0;
}
